#include "lexer/cpp_braces.h"

namespace {

bool IsWordPart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool EndsInBackslash(std::string_view line) {
    while (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return !line.empty() && line.back() == '\\';
}

// The word behind "#".
std::string_view DirectiveWord(std::string_view line) {
    std::size_t begin = line.find_first_not_of(" \t", line.find('#') + 1);
    if (begin == std::string_view::npos) return {};
    std::size_t end = begin;
    while (end < line.size() && IsWordPart(line[end])) ++end;
    return line.substr(begin, end - begin);
}

// Whether the quote at `at` begins a raw string: R", uR", u8R", UR", LR".
bool IsRaw(std::string_view line, std::size_t at) {
    if (line[at] != '"' || at == 0 || line[at - 1] != 'R') return false;
    std::size_t word = at - 1;
    while (word > 0 && IsWordPart(line[word - 1])) --word;
    const std::string_view prefix = line.substr(word, at - 1 - word);
    return prefix.empty() || prefix == "u" || prefix == "u8" || prefix == "U" || prefix == "L";
}

}  // namespace

int CppBraces::Take() {
    const int taken = depth;
    depth = 0;
    return taken;
}

void CppBraces::ReadDirective(std::string_view line) {
    const std::string_view word = DirectiveWord(line);
    if (word.compare(0, 2, "if") == 0) {
        branches.push_back(depth);
    } else if (!branches.empty()) {
        if (word.compare(0, 2, "el") == 0) depth = branches.back();
        if (word == "endif") branches.pop_back();
    }
    if (EndsInBackslash(line)) inside = Inside::Directive;
}

// Behind the text that ends what the line is inside of, or behind the line.
std::size_t CppBraces::SkipTo(std::string_view end, std::string_view line, std::size_t at) {
    const std::size_t found = line.find(end, at);
    if (found == std::string_view::npos) return line.size();
    inside = Inside::Code;
    return found + end.size();
}

// Behind the literal that begins with the quote at `at`.
std::size_t CppBraces::SkipLiteral(std::string_view line, std::size_t at) {
    const char quote = line[at];
    if (IsRaw(line, at)) {
        const std::size_t open = line.find('(', at);
        if (open == std::string_view::npos) return line.size();
        rawEnd = ")" + std::string(line.substr(at + 1, open - at - 1)) + "\"";
        inside = Inside::RawString;
        return open + 1;
    }
    for (++at; at < line.size() && line[at] != quote; ++at)
        if (line[at] == '\\') ++at;
    return at + 1;
}

void CppBraces::Read(std::string_view line) {
    if (inside == Inside::Directive) {
        if (!EndsInBackslash(line)) inside = Inside::Code;
        return;
    }
    const std::size_t first = line.find_first_not_of(" \t");
    if (inside == Inside::Code && first != std::string_view::npos && line[first] == '#')
        return ReadDirective(line);
    for (std::size_t at = 0; at < line.size();) {
        const std::string_view two = line.substr(at, 2);
        if (inside == Inside::Comment) {
            at = SkipTo("*/", line, at);
        } else if (inside == Inside::RawString) {
            at = SkipTo(rawEnd, line, at);
        } else if (two == "//") {
            return;
        } else if (two == "/*") {
            inside = Inside::Comment;
            at += 2;
        } else if (line[at] == '"' || line[at] == '\'') {
            at = SkipLiteral(line, at);
        } else {
            if (line[at] == '{') ++depth;
            if (line[at] == '}') --depth;
            ++at;
        }
    }
}
