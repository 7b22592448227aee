// Places in texts as clients count them: lines and units from 0 on. The compiler counts lines and bytes from 1 on.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// What a unit is; the client says which ones it knows.
enum class Units : unsigned char { Utf16, Utf8, Utf32 };
void CountIn(Units units);

// A text by lines. A byte order mark is no part of it, but of what the client counts.
class Lines {
public:
    Lines() = default;
    explicit Lines(std::string source);
    // Puts a text in place of the bytes [from, to).
    void Replace(std::size_t from, std::size_t to, const std::string& by);

    const std::string& Text() const { return text; }
    int Count() const { return static_cast<int>(starts.size()); }
    // Without its end; empty where there is none.
    std::string_view Line(int line) const;
    // The unit at which a byte of the line starts, and the other way round; beyond the end it is the end.
    int UnitOf(int line, std::size_t byte) const;
    std::size_t ByteOf(int line, int unit) const;
    // The byte of a position of the client; the end for places beyond it.
    std::size_t Offset(int line, int unit) const;

private:
    std::string text;
    std::vector<std::size_t> starts = {0};
    bool isMarked = false;

    // What stands in front of the line and is not told.
    int UnitsBefore(int line) const;
};
