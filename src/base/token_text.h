// Comparisons of tokens with fixed texts, cheap enough for every token of every line.
#pragma once

#include <string_view>

// Whether the token is exactly the text.
inline bool Is(std::string_view token, std::string_view text) { return token == text; }

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }
inline bool IsHexDigit(char c) { return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

// Whether the token is a String, and what stands between its quotes; any other token as it is.
inline bool IsQuoted(std::string_view token) { return token.size() >= 2 && token[0] == '"'; }
inline std::string_view Unquoted(std::string_view token) {
    return IsQuoted(token) ? token.substr(1, token.size() - 2) : token;
}

// The ASCII letter in lower case; any other byte as it is.
constexpr char LowerLetter(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Whether the byte may be part of a name; those beyond ASCII belong to letters.
inline bool IsNameByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || IsDigit(c) || c == '_' ||
           static_cast<unsigned char>(c) >= 128;
}

// Whether a name may begin with the byte.
inline bool IsLetterByte(char c) { return IsNameByte(c) && !IsDigit(c); }

// Whether the token is the word in any letter case; the word is given in lower case.
inline bool IsWord(std::string_view token, std::string_view word) {
    if (token.size() != word.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i)
        if (LowerLetter(token[i]) != word[i]) return false;
    return true;
}
