// Places in texts as clients count them: lines and UTF-16 units from 0 on. The compiler counts lines and bytes from 1 on.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The unit at which a byte of the line starts, and the other way round; beyond the end it is the end.
int UnitOf(std::string_view line, std::size_t byte);
std::size_t ByteOf(std::string_view line, int unit);

// A text by lines.
class Lines {
public:
    Lines() = default;
    explicit Lines(std::string source);

    const std::string& Text() const { return text; }
    int Count() const { return static_cast<int>(starts.size()); }
    // Without its end; empty where there is none.
    std::string_view Line(int line) const;
    // The byte of a position of the client; the end for places beyond it.
    std::size_t Offset(int line, int unit) const;

private:
    std::string text;
    std::vector<std::size_t> starts = {0};
};
