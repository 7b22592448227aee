#include "kv/hash.h"

#include <cstdint>
#include <cstdio>

std::string HashOf(const std::string& text) {
    std::uint64_t hash = 14695981039346656037ull;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ull;
    char name[17];
    std::snprintf(name, sizeof name, "%016llx", static_cast<unsigned long long>(hash));
    return name;
}
