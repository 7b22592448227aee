// The words that the translator looks for, in any letter case. They stand in base/keywords.inc, a row each.
#pragma once

#include <cstddef>
#include <iterator>
#include <string_view>

// What is asked about words; a word may have several.
namespace trait {
constexpr unsigned short declares = 1;    // begins a declaration or marks a block of them: nothing runs there
constexpr unsigned short opensBlock = 2;  // so does an If that is not on one line
constexpr unsigned short closesBlock = 4;     // so does EndIf
constexpr unsigned short changesFirst = 8;    // changes the Sequence that stands first behind it
constexpr unsigned short addsOrRemoves = 16;  // adds, removes or replaces items, which breaks loops over them
constexpr unsigned short operation = 32;
constexpr unsigned short value = 64;       // stands for a value wherever it is met
constexpr unsigned short collected = 128;  // begins a statement that the first pass or the name scan looks at
constexpr unsigned short names = 256;      // declares the name that stands behind it, sooner or later
}  // namespace trait

enum class Keyword : unsigned char {
    None,  // any other text
#define ROW(name, traits) name,
#include "base/keywords.inc"
#undef ROW
};

inline constexpr unsigned short keywordTraits[] = {
    0,
#define ROW(name, traits) traits,
#include "base/keywords.inc"
#undef ROW
};

constexpr std::size_t keywordCount = std::size(keywordTraits);

constexpr std::size_t IndexOf(Keyword keyword) { return static_cast<std::size_t>(keyword); }

constexpr bool Has(Keyword keyword, unsigned short traits) {
    return (keywordTraits[IndexOf(keyword)] & traits) != 0;
}

// The keyword in lower case; empty for None.
std::string_view TextOf(Keyword keyword);

// Which keyword the text is.
Keyword FindKeyword(std::string_view text);
