// The code in which a place stands: what leads up to it, as the language reads it.
#pragma once

#include <string>
#include <string_view>

#include "lsp/workspace.h"

namespace lsp {

struct Code {
    bool isCode = false;  // false in a String, a comment or inline C++
    // Its statement up to the place, lines that it goes on from included; in a hole what stands in that.
    std::string before;
    // The place in the line, from 0 on, where that begins; beyond the line when it does on one before.
    std::size_t column = 0;
};

Code CodeAt(Workspace& workspace, const Spot& spot);

// Where the word begins in which the text ends.
std::size_t StartOfWord(std::string_view text);
// The last word of the text, blanks behind it aside.
std::string_view LastWord(std::string_view text);

}  // namespace lsp
