// What a mistake says, as it stands and as it reads best.
#pragma once

#include <string>
#include <utility>

// What may help, for those who ask for hints.
struct Hint {
    std::string text;
};

struct Wording {
    std::string quoted;  // by kvt, with types as in C++
    std::string plain;   // for everybody else, with types as in Korvel
    std::string hint;

    Wording(std::string text)
        : quoted(text), plain(std::move(text)) {}              // NOLINT: most texts read well as they stand
    Wording(const char* text) : Wording(std::string(text)) {}  // NOLINT
    Wording(std::string asQuoted, std::string inKorvel)
        : quoted(std::move(asQuoted)), plain(std::move(inKorvel)) {}
};

inline Wording operator+(Wording a, const Wording& b) {
    a.quoted += b.quoted;
    a.plain += b.plain;
    a.hint += b.hint;
    return a;
}

inline Wording operator+(Wording message, const Hint& hint) {
    message.hint += hint.text;
    return message;
}
