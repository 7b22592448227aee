#include "lexer/mentions.h"

#include <algorithm>

#include "lexer/holes.h"

Tokens HoleTokens(const Word& literal) {
    Tokens tokens;
    if (!HasHoles(literal)) return tokens;
    for (const StringPiece& piece : PiecesOf(literal))
        tokens.insert(tokens.end(), piece.tokens.begin(), piece.tokens.end());
    return tokens;
}

Tokens MentionedTokens(TokenSpan tokens) {
    Tokens mentioned;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        mentioned.push_back(tokens.At(i));
        const Tokens inside = HoleTokens(tokens.At(i));
        mentioned.insert(mentioned.end(), inside.begin(), inside.end());
    }
    return mentioned;
}

bool Mentions(TokenSpan tokens, Token name) {
    bool found = false;
    WithHoles(tokens,
              [&](TokenSpan part) { found = found || std::find(part.first, part.last, name) != part.last; });
    return found;
}
