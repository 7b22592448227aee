#include "lexer/mentions.h"

#include <algorithm>

#include "lexer/lexer.h"

namespace {

// The contents of the holes of a String, without their tags, in one text.
std::string HoleContents(const std::string& literal) {
    std::string contents;
    bool inHole = false;
    for (std::size_t i = 1; i < literal.size(); ++i) {
        if (!inHole && literal[i] == '~') {
            ++i;
        } else if (!inHole && literal[i] == '{') {
            inHole = true;
            ++i;
        } else if (literal[i] == '}') {
            inHole = false;
        } else if (inHole) {
            contents += literal[i];
            continue;
        }
        contents += ' ';
    }
    return contents;
}

bool HasHoles(const std::string& token) {
    return !token.empty() && token[0] == '"' && token.find('{') != std::string::npos;
}

}  // namespace

Tokens HoleTokens(const std::string& literal) {
    return HasHoles(literal) ? Split(HoleContents(literal)) : Tokens();
}

Tokens MentionedTokens(TokenSpan tokens) {
    Tokens mentioned;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        mentioned.push_back(tokens.At(i));
        const Tokens inside = HoleTokens(tokens[i]);
        mentioned.insert(mentioned.end(), inside.begin(), inside.end());
    }
    return mentioned;
}

bool Mentions(TokenSpan tokens, Token name) {
    if (std::find(tokens.first, tokens.last, name) != tokens.last) return true;
    const auto holes = [](Token token) { return HasHoles(token); };
    if (std::none_of(tokens.first, tokens.last, holes)) return false;
    const Tokens mentioned = MentionedTokens(tokens);
    return std::find(mentioned.begin(), mentioned.end(), name) != mentioned.end();
}
