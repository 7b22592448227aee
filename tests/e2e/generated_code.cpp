#include "generated_code.h"

#include <cctype>

namespace {

// Skips a comment or a literal that begins at `i`; returns the position of its last character.
std::size_t SkipTo(const std::string& code, std::size_t i, const std::string& end) {
    const std::size_t found = code.find(end, i);
    return found == std::string::npos ? code.size() : found + end.size() - 1;
}

std::size_t SkipQuoted(const std::string& code, std::size_t i, char quote) {
    for (++i; i < code.size() && code[i] != quote && code[i] != '\n'; ++i) {
        if (code[i] == '\\') ++i;
    }
    return i;
}

// The last character of the comment or literal that begins at i, or i itself when there is none.
std::size_t SkipInert(const std::string& code, std::size_t i) {
    if (code.compare(i, 2, "//") == 0) return SkipTo(code, i, "\n");
    if (code.compare(i, 2, "/*") == 0) return SkipTo(code, i + 2, "*/");
    if (code.compare(i, 2, "R\"") == 0 &&
        (i == 0 || std::isalnum(static_cast<unsigned char>(code[i - 1])) == 0)) {
        const std::size_t open = code.find('(', i);
        if (open == std::string::npos) return code.size();
        return SkipTo(code, open, ")" + code.substr(i + 2, open - i - 2) + "\"");
    }
    if (code[i] == '"' || code[i] == '\'') return SkipQuoted(code, i, code[i]);
    return i;
}

bool IsHole(const std::string& code, std::size_t i) {
    if (code[i] == '@' || code[i] == '$' || code[i] == '`') return true;
    if (code.compare(i, 2, "{{") != 0) return false;
    std::size_t end = i + 2;
    while (end < code.size() &&
           (std::isalnum(static_cast<unsigned char>(code[end])) != 0 || code[end] == '_'))
        ++end;
    return end > i + 2 && std::isalpha(static_cast<unsigned char>(code[i + 2])) != 0 &&
           code.compare(end, 2, "}}") == 0;
}

}  // namespace

std::string FindFault(const std::string& code) {
    const std::string openers = "({[", closers = ")}]";
    std::string open;
    int line = 1;
    for (std::size_t i = 0; i < code.size(); ++i) {
        const std::size_t last = SkipInert(code, i);
        for (; i < last && i < code.size(); ++i) line += code[i] == '\n' ? 1 : 0;
        if (last >= code.size()) break;
        const char c = code[i];
        if (last == i && IsHole(code, i)) return "unfilled hole in line " + std::to_string(line);
        line += c == '\n' ? 1 : 0;
        if (openers.find(c) != std::string::npos) open += c;
        const std::size_t kind = closers.find(c);
        if (kind == std::string::npos) continue;
        if (open.empty() || open.back() != openers[kind])
            return std::string("stray '") + c + "' in line " + std::to_string(line);
        open.pop_back();
    }
    return open.empty() ? "" : std::string("'") + open.back() + "' is never closed";
}
