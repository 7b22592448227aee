// A window on a token list. Statements and expressions pass these around instead of copies.
#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "base/token.h"
#include "base/token_text.h"

constexpr std::size_t noToken = static_cast<std::size_t>(-1);

inline bool OpensBracket(char sign) { return sign == '(' || sign == '['; }
inline bool ClosesBracket(char sign) { return sign == ')' || sign == ']'; }

struct TokenSpan {
    const Token* first = nullptr;
    const Token* last = nullptr;

    // Walks over the texts.
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = std::string;
        using difference_type = std::ptrdiff_t;
        using pointer = const std::string*;
        using reference = const std::string&;

        Iterator() = default;
        explicit Iterator(const Token* token) : at(token) {}
        reference operator*() const { return (*at)->text; }
        pointer operator->() const { return &(*at)->text; }
        Iterator& operator++() {
            ++at;
            return *this;
        }
        Iterator operator++(int) { return Iterator(at++); }
        friend bool operator==(Iterator a, Iterator b) { return a.at == b.at; }
        friend bool operator!=(Iterator a, Iterator b) { return a.at != b.at; }

    private:
        const Token* at = nullptr;
    };

    TokenSpan() = default;
    TokenSpan(const Token* b, const Token* e) : first(b), last(e) {}
    TokenSpan(const Tokens& tokens)  // NOLINT: a list is a window on itself
        : first(tokens.data()), last(tokens.data() + tokens.size()) {}

    std::size_t size() const { return static_cast<std::size_t>(last - first); }
    bool empty() const { return first == last; }
    Iterator begin() const { return Iterator(first); }
    Iterator end() const { return Iterator(last); }

    // The word of token i, or the empty one past the end: callers may probe ahead without bounds checks.
    const Word& At(std::size_t i) const { return i < size() ? *first[i] : noWord; }
    // Its text, its keyword and its sign.
    const std::string& operator[](std::size_t i) const { return At(i).text; }
    Keyword KeywordAt(std::size_t i) const { return At(i).keyword; }
    char SignAt(std::size_t i) const { return At(i).sign; }

    // The window from token i on; empty when i is past the end.
    TokenSpan From(std::size_t i) const { return {first + (i < size() ? i : size()), last}; }
    // The window [i, j).
    TokenSpan Slice(std::size_t i, std::size_t j) const {
        j = j < size() ? j : size();
        return {first + (i < j ? i : j), first + j};
    }
    // A list of its own with the same tokens.
    Tokens Copy() const { return {first, last}; }

    // Position of the bracket that closes the one at `open`; noToken without it.
    std::size_t Matching(std::size_t open) const;
    // Position behind token i, or behind what it encloses when it is a bracket: for walks outside of brackets.
    std::size_t Behind(std::size_t i) const;
    // What the bracket at `open` encloses.
    TokenSpan Inside(std::size_t open) const { return Slice(open + 1, Matching(open)); }
    // The same when the "(" at the front encloses all; otherwise the window itself.
    TokenSpan WithoutParentheses() const {
        return SignAt(0) == '(' && Matching(0) == size() - 1 ? Inside(0) : *this;
    }
    // The window without the comment that may ride along at its end.
    TokenSpan WithoutComment() const {
        const bool comment = !empty() && last[-1]->text[0] == '/' && last[-1]->text[1] == '/';
        return comment ? Slice(0, size() - 1) : *this;
    }
    // Whether token i is the name of a member, which may be called like a keyword: route\to
    bool IsMember(std::size_t i) const;
    // Position of the first such word from `from` on that is no member; noToken without one.
    std::size_t Find(Keyword word, std::size_t from = 0) const;
    // Whether token i is a "=" that is no part of another operator, and the position of the first one from `from` on
    // that stands outside of brackets; noToken without one.
    bool IsEquals(std::size_t i) const;
    std::size_t FindEquals(std::size_t from = 0) const;
    // The parts between the signs that stand outside of brackets. No tokens give no parts.
    std::vector<TokenSpan> SplitAt(char separator) const;
    // The texts, with the separator between them.
    std::string Text(std::string_view separator = " ") const;
};
