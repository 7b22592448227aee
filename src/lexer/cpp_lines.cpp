#include "lexer/cpp_lines.h"

#include "base/token_text.h"
#include "lexer/lexer.h"

namespace {

// The word behind "#".
std::string_view DirectiveWord(std::string_view line) {
    std::size_t begin = line.find_first_not_of(" \t", line.find('#') + 1);
    if (begin == std::string_view::npos) return {};
    std::size_t end = begin;
    while (end < line.size() && IsNameByte(line[end])) ++end;
    return line.substr(begin, end - begin);
}

// Whether the quote begins a raw string: R", uR", u8R", UR", LR".
bool IsRaw(std::string_view line, std::size_t quote) {
    std::size_t begin = quote;
    while (begin > 0 && IsNameByte(line[begin - 1])) --begin;
    const std::string_view prefix = line.substr(begin, quote - begin);
    return prefix == "R" || prefix == "uR" || prefix == "u8R" || prefix == "UR" || prefix == "LR";
}

}  // namespace

void CppLines::Read(std::string_view line) {
    depthBefore = depth;
    const std::size_t first = line.find_first_not_of(" \t");
    if (!goesOn) inDirective = false;
    if (inside == Inside::Code && !goesOn && first != std::string_view::npos && line[first] == '#')
        ReadDirective(line);
    for (std::size_t at = 0; at < line.size();) at = Step(line, at);
    const bool continued = EndsContinued(line);
    goesOn = continued || inside == Inside::RawText;
    if (!goesOn && inside != Inside::Comment) inside = Inside::Code;
}

void CppLines::ReadDirective(std::string_view line) {
    inDirective = true;
    const std::string_view word = DirectiveWord(line);
    if (word.compare(0, 2, "if") == 0) {
        branches.push_back(depth);
    } else if (!branches.empty()) {
        if (word.compare(0, 2, "el") == 0) depth = branches.back();
        if (word == "endif") branches.pop_back();
    }
}

// Looks at what stands at `at`; returns the position behind it.
std::size_t CppLines::Step(std::string_view line, std::size_t at) {
    switch (inside) {
        case Inside::Code:
            return StepInCode(line, at);
        case Inside::Comment:
            return SkipTo("*/", line, at);
        case Inside::RawText:
            return SkipTo(rawEnd, line, at);
        case Inside::LineComment:
            return line.size();
        default:
            if (line[at] == (inside == Inside::Text ? '"' : '\'')) inside = Inside::Code;
            return at + (line[at] == '\\' ? 2 : 1);
    }
}

void CppLines::Tell(std::string_view token) const {
    if (onToken && !inDirective) onToken(token);
}

// What makes a string raw belongs to its quote.
std::size_t CppLines::PassWord(std::string_view line, std::size_t at) const {
    std::size_t end = at;
    while (end < line.size() && IsNameByte(line[end])) ++end;
    if (end == line.size() || line[end] != '"' || !IsRaw(line, end)) Tell(line.substr(at, end - at));
    return end;
}

std::size_t CppLines::StepInCode(std::string_view line, std::size_t at) {
    const std::string_view two = line.substr(at, 2);
    if (two == "//" || two == "/*") {
        inside = two == "//" ? Inside::LineComment : Inside::Comment;
        return at + 2;
    }
    if (IsNameByte(line[at])) return PassWord(line, at);
    if (line[at] != ' ' && line[at] != '\t') Tell(line.substr(at, 1));
    if (line[at] == '"') return OpenText(line, at);
    if (line[at] == '\'') inside = Inside::Character;
    if (line[at] == '{' && !inDirective) ++depth;
    if (line[at] == '}' && !inDirective) --depth;
    return at + 1;
}

// Behind the text that ends what the line is inside of, or behind the line.
std::size_t CppLines::SkipTo(std::string_view end, std::string_view line, std::size_t at) {
    const std::size_t found = line.find(end, at);
    if (found == std::string_view::npos) return line.size();
    inside = Inside::Code;
    return found + end.size();
}

std::size_t CppLines::OpenText(std::string_view line, std::size_t quote) {
    const std::size_t bracket = line.find('(', quote);
    if (!IsRaw(line, quote) || bracket == std::string_view::npos) {
        inside = Inside::Text;
        return quote + 1;
    }
    inside = Inside::RawText;
    rawEnd = ")" + std::string(line.substr(quote + 1, bracket - quote - 1)) + "\"";
    return bracket + 1;
}
