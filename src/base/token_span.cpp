#include "base/token_span.h"

std::size_t TokenSpan::Matching(std::size_t open) const {
    int depth = 0;
    for (std::size_t i = open; i < size(); ++i) {
        const char sign = first[i]->sign;
        if (OpensBracket(sign)) ++depth;
        if (ClosesBracket(sign) && --depth == 0) return i;
    }
    return noToken;
}

std::size_t TokenSpan::Behind(std::size_t i) const {
    if (!OpensBracket(SignAt(i))) return i + 1;
    const std::size_t close = Matching(i);
    return close == noToken ? size() : close + 1;
}

bool TokenSpan::IsMember(std::size_t i) const {
    const char before = i > 0 ? SignAt(i - 1) : '\0';
    return before == '\\' || before == '.';
}

std::size_t TokenSpan::Find(Keyword word, std::size_t from) const {
    for (std::size_t i = from; i < size(); ++i)
        if (first[i]->keyword == word && !IsMember(i)) return i;
    return noToken;
}

bool TokenSpan::IsEquals(std::size_t i) const {
    if (SignAt(i) != '=' || SignAt(i + 1) == '=') return false;
    const char before = i > 0 ? SignAt(i - 1) : '\0';
    return before != '<' && before != '>' && before != '!' && before != '=';
}

std::size_t TokenSpan::FindEquals(std::size_t from) const {
    for (std::size_t i = from; i < size(); i = OpensBracket(first[i]->sign) ? Behind(i) : i + 1)
        if (first[i]->sign == '=' && IsEquals(i)) return i;
    return noToken;
}

std::vector<TokenSpan> TokenSpan::SplitAt(char separator) const {
    std::vector<TokenSpan> parts;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < size(); i = OpensBracket(first[i]->sign) ? Behind(i) : i + 1) {
        if (first[i]->sign != separator) continue;
        parts.push_back(Slice(begin, i));
        begin = i + 1;
    }
    if (!empty()) parts.push_back(From(begin));
    return parts;
}

std::string TokenSpan::Text(std::string_view separator) const {
    std::string text;
    for (std::size_t i = 0; i < size(); ++i) {
        if (i > 0) text += separator;
        text += first[i]->text;
    }
    return text;
}
