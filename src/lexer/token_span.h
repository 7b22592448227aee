// A window on a token list. Statements and expressions pass these around instead of copies.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "lexer/token_text.h"

struct TokenSpan {
    const std::string* first = nullptr;
    const std::string* last = nullptr;

    TokenSpan() = default;
    TokenSpan(const std::string* b, const std::string* e) : first(b), last(e) {}
    TokenSpan(const std::vector<std::string>& tokens)  // NOLINT: a list is a window on itself
        : first(tokens.data()), last(tokens.data() + tokens.size()) {}

    std::size_t size() const { return static_cast<std::size_t>(last - first); }
    bool empty() const { return first == last; }
    const std::string* begin() const { return first; }
    const std::string* end() const { return last; }

    // Token i, or the empty string past the end: callers may probe ahead without bounds checks.
    const std::string& operator[](std::size_t i) const { return i < size() ? first[i] : Nothing(); }

    // The window from token i on; empty when i is past the end.
    TokenSpan From(std::size_t i) const { return {first + (i < size() ? i : size()), last}; }
    // The window [i, j).
    TokenSpan Slice(std::size_t i, std::size_t j) const {
        j = j < size() ? j : size();
        return {first + (i < j ? i : j), first + j};
    }

private:
    static const std::string& Nothing() {
        static const std::string nothing;
        return nothing;
    }
};
