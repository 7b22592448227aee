// Tables of words as other languages have them.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>

// Words in lower case, and what there is to say of them or stands in their place.
struct ForeignRow {
    const char* words;
    const char* text;
};

using ForeignWords = std::unordered_map<std::string_view, const char*>;

template <class Rows>
ForeignWords IndexOf(const Rows& rows) {
    ForeignWords words;
    for (const ForeignRow& row : rows) {
        const std::string_view all = row.words;
        for (std::size_t at = 0, end = 0; at < all.size(); at = end + 1) {
            end = std::min(all.find(' ', at), all.size());
            words.emplace(all.substr(at, end - at), row.text);
        }
    }
    return words;
}

// Null for words that are not among them.
inline const char* Find(const ForeignWords& words, const std::string& word) {
    const auto found = words.find(word);
    return found == words.end() ? nullptr : found->second;
}

// Whether the word is one of those in the text.
inline bool IsAmong(std::string_view words, std::string_view word) {
    const std::size_t at = (" " + std::string(words) + " ").find(" " + std::string(word) + " ");
    return !word.empty() && at != std::string::npos;
}
