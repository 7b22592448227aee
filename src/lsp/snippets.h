// Blocks as they are put in for the word that opens them, with places to be filled ($1, $0).
#pragma once

#include <string>

namespace lsp {

// Empty for words that open none.
std::string SnippetOf(const std::string& word);

}  // namespace lsp
