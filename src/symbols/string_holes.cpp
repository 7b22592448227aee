#include "symbols/string_holes.h"

Tokens HoleTokens(const std::string& token) {
    Tokens tokens;
    for (std::size_t i = 1; i < token.size(); ++i) {
        if (token[i] == '~') {
            ++i;
            continue;
        }
        if (token[i] != '{') continue;
        const std::size_t close = token.find('}', i);
        if (close == std::string::npos || close < i + 2) break;
        const Tokens hole = Split(token.substr(i + 2, close - i - 2));  // behind the tag
        tokens.insert(tokens.end(), hole.begin(), hole.end());
        i = close;
    }
    return tokens;
}
