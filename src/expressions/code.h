// C++ text on its way into the output, with the passages in it: what only a loop over a Sequence needs that the
// body changes (sequence_walks.h). They become slots of the routine, which keep their text or lose it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct Passage {
    std::size_t at = 0;  // in the text, which holds nothing of it
    std::string text;
    int walk = 0;  // its number
};

struct Code {
    std::string text;
    std::vector<Passage> passages;  // in their order
    bool lambda = false;            // holds a lambda, which may not stand inside decltype

    Code() = default;
    Code(std::string t) : text(std::move(t)) {}  // NOLINT: text is code without passages
    Code(const char* t) : text(t) {}             // NOLINT

    template <class Text>
    Code& operator+=(const Text& more) {
        text += more;
        return *this;
    }
    Code& operator+=(const Code& more) {
        for (const Passage& passage : more.passages)
            passages.push_back({text.size() + passage.at, passage.text, passage.walk});
        text += more.text;
        lambda = lambda || more.lambda;
        return *this;
    }
};

inline Code operator+(Code first, const Code& second) {
    first += second;
    return first;
}
