// What a String literal is made of: text and {holes}. Every literal is cut once, like any other token, so that
// whoever asks what an expression mentions sees what stands in the holes of its Strings.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "base/token_span.h"

struct StringPiece {
    enum class Kind : unsigned char {
        Text,     // characters [from, to) of the token, tilde pairs included
        Hole,     // {tag content}
        Trouble,  // what stands here is no hole; nothing follows
    };
    Kind kind = Kind::Text;
    std::size_t from = 0, to = 0;  // of trouble: what was meant as a hole, as far as that can be said
    char tag = '\0';
    std::string content;            // of a hole, without blanks at its ends
    Tokens tokens;                  // the same, cut
    const char* trouble = nullptr;  // the message
};

// The pieces of the literal, in order; none for "". They last until the end of the run.
const std::vector<StringPiece>& PiecesOf(const Word& literal);
// Behind the name at a place of a literal, or what is reached from one: where the brace of an open hole would stand.
std::size_t EndOfName(std::string_view literal, std::size_t at);
// Whether the token is a literal with a hole, or with what was meant to be one.
bool HoldsHole(const Word& braced);
inline bool HasHoles(const Word& token) { return token.braced && HoldsHole(token); }

// Calls `visit` with the window and with the tokens of each hole in its Strings.
template <class Visit>
void WithHoles(TokenSpan tokens, Visit visit) {
    visit(tokens);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (!HasHoles(tokens.At(i))) continue;
        for (const StringPiece& piece : PiecesOf(tokens.At(i)))
            if (piece.kind == StringPiece::Kind::Hole) visit(TokenSpan(piece.tokens));
    }
}
