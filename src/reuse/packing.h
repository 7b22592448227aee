// Numbers and texts one after the other, as the record of a translation has them (reuse/record.h).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

class Packer {
public:
    void Number(std::uint64_t number) {
        for (; number >= 128; number >>= 7) packed += static_cast<char>(number | 128);
        packed += static_cast<char>(number);
    }
    void Text(std::string_view text) {
        Number(text.size());
        packed += text;
    }

    std::string packed;
};

// Reads them in the order in which they were written. Behind the end, or where the lengths cannot be right, it is no longer
// good, and yields nothing but zeros and empty texts.
class Unpacker {
public:
    explicit Unpacker(std::string_view packed) : left(packed) {}

    bool IsGood() const { return good; }
    std::uint64_t Number() {
        std::uint64_t number = 0;
        for (unsigned shift = 0; shift < 64 && !left.empty(); shift += 7) {
            const auto byte = static_cast<unsigned char>(left.front());
            left.remove_prefix(1);
            number |= std::uint64_t{byte & 127U} << shift;
            if (byte < 128) return number;
        }
        Fail();
        return 0;
    }
    // Valid as long as what it is read from.
    std::string_view Text() {
        const std::uint64_t size = Number();
        if (size > left.size()) Fail();
        const std::string_view text = left.substr(0, good ? static_cast<std::size_t>(size) : 0);
        left.remove_prefix(text.size());
        return text;
    }

private:
    std::string_view left;
    bool good = true;

    void Fail() {
        good = false;
        left = {};
    }
};

// A list: how many there are, and each by `write`; and the same back, by `read`, which adds one to it.
template <class List, class Write>
void PackList(Packer& packer, const List& list, Write write) {
    packer.Number(list.size());
    for (const auto& item : list) write(item);
}
template <class Read>
void UnpackList(Unpacker& packed, Read read) {
    for (std::uint64_t left = packed.Number(); left > 0 && packed.IsGood(); --left) read();
}
