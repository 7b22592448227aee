// The words that the translator looks for, in any letter case. They stand in base/keywords.inc, a row each.
#pragma once

#include <array>
#include <cstddef>
#include <iterator>
#include <string_view>

// What is asked about words; a word may have several.
namespace trait {
constexpr unsigned declares = 1;         // begins a declaration or marks a block of them: nothing runs there
constexpr unsigned variables = 2;        // declares variables
constexpr unsigned routine = 4;          // opens a Function or Method
constexpr unsigned classes = 8;          // opens a Type or Element
constexpr unsigned loop = 16;            // opens a loop
constexpr unsigned divides = 32;         // stands between the parts of a block, and closes none
constexpr unsigned changesFirst = 64;    // changes the Sequence that stands first behind it
constexpr unsigned addsOrRemoves = 128;  // adds, removes or replaces items, which breaks loops over them
constexpr unsigned operation = 256;
constexpr unsigned value = 512;       // stands for a value wherever it is met
constexpr unsigned collected = 1024;  // the first pass or the name scan looks at statements that it begins
constexpr unsigned names = 2048;      // declares the name that stands behind it, sooner or later
constexpr unsigned creates = 4096;    // makes an object
constexpr unsigned outside = 8192;    // stands at the top level or in a class body alone
// Follow from the blocks of the rows:
constexpr unsigned opens = 16384;        // there are words that close what it opens
constexpr unsigned opensBlock = 32768;   // the same, and what is in it runs; an If on one line opens none
constexpr unsigned closesBlock = 65536;  // closes such a block
}  // namespace trait

enum class Keyword : unsigned char {
    None,  // any other text
#define ROW(name, traits, block) name,
#include "base/keywords.inc"
#undef ROW
};

struct KeywordRow {
    unsigned traits;
    Keyword block;  // see BlockOf
};

constexpr KeywordRow writtenRows[] = {
    {0, Keyword::None},
#define ROW(name, traits, block) {traits, Keyword::block},
#include "base/keywords.inc"
#undef ROW
};

constexpr std::size_t keywordCount = std::size(writtenRows);

constexpr std::size_t IndexOf(Keyword keyword) { return static_cast<std::size_t>(keyword); }

inline constexpr auto keywordRows = [] {
    std::array<KeywordRow, keywordCount> rows{};
    for (std::size_t i = 0; i < keywordCount; ++i) rows[i].traits = writtenRows[i].traits;
    for (std::size_t i = 0; i < keywordCount; ++i) {
        const auto [traits, block] = writtenRows[i];
        rows[i].block = block;
        if (block == Keyword::None) continue;
        const bool runs = (writtenRows[IndexOf(block)].traits & trait::declares) == 0;
        rows[IndexOf(block)].traits |= trait::opens | (runs ? trait::opensBlock : 0);
        if (runs && (traits & trait::divides) == 0) rows[i].traits |= trait::closesBlock;
    }
    return rows;
}();

constexpr bool Has(Keyword keyword, unsigned traits) {
    return (keywordRows[IndexOf(keyword)].traits & traits) != 0;
}

// What opens the block that the keyword closes or divides; None for any other.
constexpr Keyword BlockOf(Keyword keyword) { return keywordRows[IndexOf(keyword)].block; }

// The keyword in lower case; empty for None.
std::string_view TextOf(Keyword keyword);

// Which keyword the text is.
Keyword FindKeyword(std::string_view text);
