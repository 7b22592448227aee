// A text that may have many megabytes, in parts that fit into memory that others had before: as one string it would be
// more than the whole run has freed in one place.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

class LongText {
public:
    LongText() = default;
    LongText(std::string&& whole) { parts.push_back(std::move(whole)); }  // NOLINT: a text is one of one part

    LongText& operator+=(std::string_view text) {
        if (parts.empty() || parts.back().capacity() - parts.back().size() < text.size())
            BeginPart(text.size());
        parts.back() += text;
        return *this;
    }

    const std::vector<std::string>& Parts() const { return parts; }

    std::string Joined() const {
        std::string text;
        for (const std::string& part : parts) text += part;
        return text;
    }

private:
    static constexpr std::size_t sizeOfPart = 65535;  // with the zero behind it a power of two
    std::vector<std::string> parts;

    void BeginPart(std::size_t needed) {
        parts.emplace_back().reserve(needed < sizeOfPart ? sizeOfPart : needed);
    }
};
