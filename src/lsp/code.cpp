#include "lsp/code.h"

#include <algorithm>

#include "base/keywords.h"
#include "lexer/lexer.h"

namespace lsp {

namespace {

bool GoesOn(std::string_view line) {
    if (line.find('_') == std::string_view::npos) return false;
    Lexer lexer;
    lexer.Cut(line);
    return !lexer.tokens.empty() && lexer.tokens.back()->text == "_";
}

Keyword FirstKeyword(std::string_view line) {
    const auto from =
        std::find_if_not(line.begin(), line.end(), [](char c) { return c == ' ' || c == '\t'; });
    const auto to = std::find_if_not(from, line.end(), IsOfWord);
    return FindKeyword(Lower(std::string(from, to)));
}

bool IsInCpp(const Lines& lines, int line) {
    for (int i = line - 1; i >= 0; --i) {
        const Keyword first = FirstKeyword(lines.Line(i));
        if (first == Keyword::InlineCpp || first == Keyword::EndInlineCpp) return first == Keyword::InlineCpp;
    }
    return false;
}

// Where the code begins that reaches to the end of the text; npos where that ends in a String or comment.
std::size_t StartOfCode(std::string_view text) {
    std::size_t statement = 0, hole = std::string_view::npos;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"') {
            inString = !inString;
            hole = std::string_view::npos;
        } else if (!inString) {
            if (c == ';') return std::string_view::npos;
            if (c == '|') statement = i + 1;
        } else if (hole != std::string_view::npos) {
            if (c == '}') hole = std::string_view::npos;
        } else if (c == '~') {
            ++i;
        } else if (c == '{') {
            hole = i + 2;  // behind its tag
        }
    }
    return !inString ? statement : hole <= text.size() ? hole : std::string_view::npos;
}

}  // namespace

Code CodeAt(Workspace& workspace, const Spot& spot) {
    const Lines& lines = workspace.LinesOf(spot.file);
    std::string text(spot.before);
    for (int line = spot.line - 2; line >= 0 && GoesOn(lines.Line(line)); --line)
        text = CutAtContinuation(std::string(lines.Line(line))) + " " + text;
    const std::size_t start = StartOfCode(text);
    if (start == std::string_view::npos || IsInCpp(lines, spot.line - 1)) return {};
    return {true, text.substr(start), spot.before.size() - (text.size() - start)};
}

std::size_t StartOfWord(std::string_view text) {
    return static_cast<std::size_t>(std::find_if_not(text.rbegin(), text.rend(), IsOfWord).base() -
                                    text.begin());
}

std::string_view LastWord(std::string_view text) {
    text = text.substr(0, text.find_last_not_of(" \t") + 1);
    return text.substr(StartOfWord(text));
}

}  // namespace lsp
