#include "lsp/positions.h"

#include <algorithm>
#include <utility>

namespace {

bool Continues(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

// The units of the letter that begins with the byte: letters of four bytes take two.
int UnitsOf(char first) { return static_cast<unsigned char>(first) >= 0xF0U ? 2 : 1; }

}  // namespace

int UnitOf(std::string_view line, std::size_t byte) {
    int unit = 0;
    for (std::size_t i = 0; i < std::min(byte, line.size()); ++i)
        if (!Continues(line[i])) unit += UnitsOf(line[i]);
    return unit;
}

std::size_t ByteOf(std::string_view line, int unit) {
    std::size_t i = 0;
    for (int passed = 0; i < line.size(); ++i) {
        if (Continues(line[i])) continue;
        passed += UnitsOf(line[i]);
        if (passed > unit) break;
    }
    return i;
}

Lines::Lines(std::string source) : text(std::move(source)) {
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', end + 1))
        starts.push_back(end + 1);
}

std::string_view Lines::Line(int line) const {
    if (line < 0 || line >= Count()) return {};
    const std::size_t start = starts[static_cast<std::size_t>(line)];
    std::string_view found = std::string_view(text).substr(start);
    found = found.substr(0, found.find('\n'));
    if (!found.empty() && found.back() == '\r') found.remove_suffix(1);
    return found;
}

std::size_t Lines::Offset(int line, int unit) const {
    if (line < 0) return 0;
    if (line >= Count()) return text.size();
    return starts[static_cast<std::size_t>(line)] + ByteOf(Line(line), unit);
}
