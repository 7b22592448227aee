// What to write in place of signs of other languages, as changes that an editor can make.
#pragma once

#include <cstddef>
#include <string>

#include "base/diagnostic.h"
#include "base/token_span.h"

// A line that is wrong, its tokens, and the number of the one that is meant, which lies beyond their end where it cannot
// be told (in the hole of a String, say).
struct WrongLine {
    const std::string& text;
    TokenSpan tokens;
    std::size_t at;

    // Where the token begins and where it ends.
    std::size_t Start(std::size_t token) const;
    std::size_t End(std::size_t token) const { return Start(token) + tokens[token].size(); }
};

// Adds what to write in place of the sign that is meant, where that can be told.
void FixSign(korvel::Diagnostic& mistake, const WrongLine& line);

// The same for n++ and n += 2, and for the Then that an If in one line lacks.
void FixStatement(korvel::Diagnostic& mistake, const WrongLine& line);
