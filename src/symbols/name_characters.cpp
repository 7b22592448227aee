#include "symbols/name_characters.h"

#include <algorithm>
#include <iterator>

#include "base/token_text.h"

namespace {

struct CharacterRange {
    char32_t first, last;
};

// What C++11 takes in identifiers, less what is no letter, digit or mark of any script: signs, emoji, and
// what cannot be seen.
constexpr CharacterRange allowed[] = {
    {0xAA, 0xAA},       {0xB5, 0xB5},       {0xB7, 0xB7},       {0xBA, 0xBA},       {0xC0, 0xD6},
    {0xD8, 0xF6},       {0xF8, 0x167F},     {0x1681, 0x180D},   {0x180F, 0x1FFF},   {0x203F, 0x2040},
    {0x2054, 0x2054},   {0x2071, 0x2071},   {0x207F, 0x207F},   {0x2090, 0x209C},   {0x20D0, 0x20FF},
    {0x2102, 0x2138},   {0x213C, 0x2149},   {0x2160, 0x2188},   {0x2C00, 0x2DFF},   {0x3005, 0x3007},
    {0x3021, 0x302F},   {0x3031, 0xD7FF},   {0xF900, 0xFD3D},   {0xFD50, 0xFDCF},   {0xFDF0, 0xFDFB},
    {0xFE20, 0xFE2F},   {0xFE70, 0xFEFC},   {0xFF10, 0xFF19},   {0xFF21, 0xFF3A},   {0xFF3F, 0xFF3F},
    {0xFF41, 0xFF5A},   {0xFF66, 0xFFDC},   {0x10000, 0x1CFFF}, {0x1D400, 0x1D7FF}, {0x1E000, 0x1EFFF},
    {0x20000, 0x2FFFD}, {0x30000, 0x3FFFD},
};

// Not at the beginning.
constexpr CharacterRange combining[] = {{0x300, 0x36F}, {0x1DC0, 0x1DFF}, {0x20D0, 0x20FF}, {0xFE20, 0xFE2F}};

template <std::size_t count>
bool IsIn(const CharacterRange (&ranges)[count], char32_t character) {
    const auto* found =
        std::lower_bound(std::begin(ranges), std::end(ranges), character,
                         [](const CharacterRange& range, char32_t c) { return range.last < c; });
    return found != std::end(ranges) && character >= found->first;
}

constexpr char32_t invalid = 0;

// Takes one character of several bytes off the text: as many as it needs.
char32_t TakeCharacter(std::string_view& text) {
    const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const std::size_t size = byte(0) < 0xE0 ? 2 : byte(0) < 0xF0 ? 3 : 4;
    if (byte(0) < 0xC0 || byte(0) > 0xF4 || size > text.size()) return invalid;
    char32_t character = byte(0) & (0x7FU >> size);
    for (std::size_t i = 1; i < size; ++i) {
        if ((byte(i) & 0xC0U) != 0x80) return invalid;
        character = (character << 6U) | (byte(i) & 0x3FU);
    }
    constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    if (character < least[size]) return invalid;
    text.remove_prefix(size);
    return character;
}

}  // namespace

bool IsNameText(std::string_view text) {
    if (text.empty() || (text[0] >= '0' && text[0] <= '9')) return false;
    const auto* const other = std::find_if(text.begin(), text.end(), [](char c) {
        return static_cast<unsigned char>(c) >= 0x80 || !IsNameByte(c);
    });
    if (other == text.end()) return true;
    for (bool begins = true; !text.empty(); begins = false) {
        if (static_cast<unsigned char>(text[0]) < 0x80) {
            if (!IsNameByte(text[0])) return false;
            text.remove_prefix(1);
            continue;
        }
        const char32_t character = TakeCharacter(text);
        if (!IsIn(allowed, character) || (begins && IsIn(combining, character))) return false;
    }
    return true;
}
