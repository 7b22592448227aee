// Numbers that stand for texts, and for what is made of them: others get others, as far as anybody will ever see. They are
// the same in every run on machines of one byte order.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace hashing {

inline std::uint64_t Mix(std::uint64_t hash, std::uint64_t bytes) {
    hash = (hash ^ bytes) * 0x9E3779B97F4A7C15U;
    return hash ^ hash >> 32;
}

template <typename Number>
std::uint64_t Load(const char* bytes) {
    Number number = 0;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

// All bytes of a text of less than eight, some of them twice.
inline std::uint64_t LoadFew(std::string_view text) {
    const std::size_t size = text.size();
    const char* end = text.data() + size;
    if (size >= 4) return Load<std::uint32_t>(text.data()) << 32 | Load<std::uint32_t>(end - 4);
    if (size >= 2) return Load<std::uint16_t>(text.data()) << 16 | Load<std::uint16_t>(end - 2);
    return size == 1 ? static_cast<unsigned char>(text[0]) : 0;
}

}  // namespace hashing

// Eight bytes at a time; tokens are short.
inline std::uint64_t TextHash(std::string_view text) {
    std::uint64_t hash = text.size();
    for (; text.size() >= 8; text.remove_prefix(8))
        hash = hashing::Mix(hash, hashing::Load<std::uint64_t>(text.data()));
    return hashing::Mix(hash, hashing::LoadFew(text));
}

// Of things one after the other.
class Digest {
public:
    void Add(std::uint64_t number) { value = hashing::Mix(value, number); }
    void Add(std::string_view text) { Add(TextHash(text)); }
    std::uint64_t Value() const { return value; }

private:
    std::uint64_t value = 1;
};
