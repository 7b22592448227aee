#include "lsp/positions.h"

#include <algorithm>
#include <utility>

#include "base/source_reader.h"

namespace {

// Of the one client that a process has.
Units counted = Units::Utf16;

bool Continues(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

// How many units begin with the byte: in UTF-16, letters of four bytes take two.
int UnitsOf(char byte) {
    if (counted == Units::Utf8) return 1;
    if (Continues(byte)) return 0;
    return counted == Units::Utf16 && static_cast<unsigned char>(byte) >= 0xF0U ? 2 : 1;
}

// Where the lines behind the ends of lines in a text begin, whose own beginning is given.
void AddStarts(std::string_view text, std::size_t begin, std::vector<std::size_t>& starts) {
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n', end + 1))
        starts.push_back(begin + end + 1);
}

}  // namespace

void CountIn(Units units) { counted = units; }

Lines::Lines(std::string source) : text(std::move(source)) {
    const std::size_t mark = ByteOrderMarkOf(text);
    isMarked = mark > 0;
    text.erase(0, mark);
    AddStarts(text, 0, starts);
}

void Lines::Replace(std::size_t from, std::size_t to, const std::string& by) {
    text.replace(from, to - from, by);
    const auto gone = std::upper_bound(starts.begin(), starts.end(), from);
    const auto moved = std::upper_bound(gone, starts.end(), to);
    std::for_each(moved, starts.end(), [&](std::size_t& start) { start = start - (to - from) + by.size(); });
    std::vector<std::size_t> fresh;
    AddStarts(by, from, fresh);
    starts.insert(starts.erase(gone, moved), fresh.begin(), fresh.end());
}

std::string_view Lines::Line(int line) const {
    if (line < 0 || line >= Count()) return {};
    const std::size_t start = starts[static_cast<std::size_t>(line)];
    std::string_view found = std::string_view(text).substr(start);
    found = found.substr(0, found.find('\n'));
    if (!found.empty() && found.back() == '\r') found.remove_suffix(1);
    return found;
}

int Lines::UnitsBefore(int line) const {
    if (!isMarked || line != 0) return 0;
    return counted == Units::Utf8 ? 3 : 1;
}

int Lines::UnitOf(int line, std::size_t byte) const {
    const std::string_view found = Line(line);
    int unit = UnitsBefore(line);
    for (const char c : found.substr(0, byte)) unit += UnitsOf(c);
    return unit;
}

std::size_t Lines::ByteOf(int line, int unit) const {
    const std::string_view found = Line(line);
    std::size_t i = 0;
    for (int passed = UnitsBefore(line); i < found.size(); ++i) {
        passed += UnitsOf(found[i]);
        if (passed > unit && !Continues(found[i])) break;
    }
    return i;
}

std::size_t Lines::Offset(int line, int unit) const {
    if (line < 0) return 0;
    if (line >= Count()) return text.size();
    return starts[static_cast<std::size_t>(line)] + ByteOf(line, unit);
}
