// The words that the translator looks for, in any letter case. They stand in lexer/keywords.inc, a row each.
#pragma once

#include <cstddef>
#include <string_view>

// What is asked about words; a word may have several.
namespace trait {
constexpr unsigned char declares = 1;     // begins a declaration or marks a block of them: nothing runs there
constexpr unsigned char opensBlock = 2;   // so does an If that is not on one line
constexpr unsigned char closesBlock = 4;  // so does EndIf
constexpr unsigned char changesFirst = 8;    // changes the Sequence that stands first behind it
constexpr unsigned char addsOrRemoves = 16;  // adds, removes or replaces items, which breaks loops over them
constexpr unsigned char operation = 32;
constexpr unsigned char value = 64;  // stands for a value wherever it is met
}  // namespace trait

enum class Keyword : unsigned char {
    None,  // any other text
#define ROW(name, traits) name,
#include "lexer/keywords.inc"
#undef ROW
};

inline constexpr unsigned char keywordTraits[] = {
    0,
#define ROW(name, traits) traits,
#include "lexer/keywords.inc"
#undef ROW
};

constexpr std::size_t keywordCount = sizeof keywordTraits;

constexpr std::size_t IndexOf(Keyword keyword) { return static_cast<std::size_t>(keyword); }

constexpr bool Has(Keyword keyword, unsigned char traits) {
    return (keywordTraits[IndexOf(keyword)] & traits) != 0;
}

// The keyword in lower case; empty for None.
std::string_view TextOf(Keyword keyword);

// Which keyword the text is.
Keyword FindKeyword(std::string_view text);
