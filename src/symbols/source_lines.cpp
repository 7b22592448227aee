#include "symbols/source_lines.h"

#include <algorithm>
#include <filesystem>

#include "driver/settings.h"

namespace {

bool IsWord(const std::string& token, const char* lowerWord) { return Lower(token) == lowerWord; }

bool EndsInTilde(const Tokens& tokens) {
    const std::size_t count = tokens.size();
    return (count > 0 && tokens[count - 1] == "~") || (count > 1 && tokens[count - 2] == "~");
}

bool EndsInTwoTildes(const Tokens& tokens) {
    const std::size_t count = tokens.size();
    return count > 1 && tokens[count - 1] == "~" && tokens[count - 2] == "~";
}

std::string WithoutTildes(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '~'), text.end());
    return text;
}

std::string WithoutComment(const std::string& raw) {
    const std::size_t comment = CommentStart(raw);
    return comment == std::string::npos ? raw : raw.substr(0, comment);
}

std::string WithoutIndent(const std::string& raw) {
    const std::size_t first = raw.find_first_not_of(" \t");
    return first == std::string::npos ? std::string() : raw.substr(first);
}

bool IsSingleLineIf(const Tokens& tokens) {
    return IsWord(tokens.front(), "if") &&
           std::any_of(tokens.begin(), tokens.end(),
                       [](const std::string& token) { return IsWord(token, "then"); });
}

bool BeginsWith(const std::string& text, std::size_t at, const char* lowerWord) {
    for (; *lowerWord; ++at, ++lowerWord) {
        if (at >= text.size() || (text[at] | 0x20) != *lowerWord) return false;
    }
    return true;
}

bool IsJoinMark(const std::string& text, std::size_t end) {
    const std::size_t last = end == 0 ? std::string::npos : text.find_last_not_of(" \t", end - 1);
    return last != std::string::npos && (text[last] == '_' || text[last] == '~');
}

// A quick look that spares most lines the lexer: right about every line that matters, wrong about some others.
bool MayNameSomething(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return false;
    for (const char* start : {"type", "elem", "incl", "inli"}) {
        if (BeginsWith(text, first, start)) return true;
    }
    if (text.find('|') != std::string::npos || IsJoinMark(text, text.size())) return true;
    const std::size_t comment = text.find(';') == std::string::npos ? std::string::npos : CommentStart(text);
    return comment != std::string::npos && IsJoinMark(text, comment);
}

}  // namespace

std::string SourceLines::ReadLine() {
    ++physical;
    return reader.NextLine();
}

void SourceLines::Lex(const std::string& text) {
    if (checking == Checking::Physical) lexer.lineNumber = physical - 1;
    const bool checked = checking == Checking::Strict || checking == Checking::Physical;
    lexer.LexLine(text, false, checked, !checked);
}

// The joined line. Counting it once more makes the first pass's numbers run behind, which is its way.
void SourceLines::LexAgain(const std::string& text) {
    const bool checked = checking == Checking::Strict || checking == Checking::Physical;
    lexer.LexLine(text, false, checking == Checking::Strict, !checked);
}

void SourceLines::TakeComment(const std::string& raw) {
    if (!settings.outputComments || checking != Checking::Physical) return;
    const std::string found = CommentOf(raw);
    if (found.empty()) return;
    if (!comment.empty()) comment += " ";
    comment += found;
}

void SourceLines::SkipInlineCpp() {
    metInlineCpp = true;
    inlineCppOpen = true;
    while (inlineCppOpen && !reader.AtEnd()) {
        const std::string raw = ReadLine();
        lexer.LexLine(raw, false, false, true);
        if (checking == Checking::Strict) ++lexer.lineNumber;
        if (lexer.tokens.empty()) continue;
        inlineCppOpen = !IsWord(lexer.tokens.front(), "endinlinecpp");
        if (inlineCppOpen && onInlineCpp) onInlineCpp(raw);
    }
}

// Two tildes begin a join; it goes on while one of the last two tokens is a tilde.
void SourceLines::JoinTildeLines(std::string& text) {
    if (!EndsInTwoTildes(lexer.tokens)) return;
    text = WithoutTildes(WithoutComment(text));
    bool more = true;
    while (more && !reader.AtEnd()) {
        const std::string raw = ReadLine();
        TakeComment(raw);
        const std::string piece = WithoutComment(raw);
        lexer.LexLine(piece, false, false, true);
        more = EndsInTilde(lexer.tokens);
        text += WithoutTildes(piece);
    }
    LexAgain(text);
}

void SourceLines::JoinUnderscoreLines(std::string& text) {
    if (lexer.tokens.empty() || lexer.tokens.back() != "_") return;
    text = CutAtContinuation(text);
    bool more = true;
    while (more && !reader.AtEnd()) {
        const std::string piece = WithoutIndent(ReadLine());
        TakeComment(piece);
        lexer.LexLine(piece, false, false, true);
        more = !lexer.tokens.empty() && lexer.tokens.back() == "_";
        text += " " + (more ? CutAtContinuation(piece) : WithoutComment(piece));
    }
    LexAgain(text);
}

void SourceLines::SplitStatements() {
    const TokenSpan all(lexer.tokens);
    statements.clear();
    if (all.empty()) return;
    if (IsSingleLineIf(lexer.tokens)) {
        statements.push_back(all);
        return;
    }
    std::size_t begin = 0;
    for (std::size_t i = 0; i <= all.size(); ++i) {
        if (i < all.size() && all.first[i] != "|") continue;
        if (i > begin) statements.push_back(all.Slice(begin, i));
        begin = i + 1;
    }
}

bool SourceLines::Next() {
    metInlineCpp = false;
    while (!reader.AtEnd()) {
        std::string text = ReadLine();
        start = physical;
        if (checking == Checking::Names && !MayNameSomething(text)) continue;
        Lex(text);
        comment.clear();
        TakeComment(text);
        if (lexer.tokens.empty() && comment.empty()) continue;
        if (!lexer.tokens.empty() && IsWord(lexer.tokens.front(), "inlinecpp")) {
            SkipInlineCpp();
            continue;
        }
        JoinTildeLines(text);
        JoinUnderscoreLines(text);
        if (lexer.tokens.empty() && comment.empty()) continue;
        SplitStatements();
        return true;
    }
    return false;
}

std::string FileId(const std::string& path) {
    return std::filesystem::path(path).lexically_normal().generic_string();
}

std::string JoinTokens(TokenSpan tokens) {
    std::string text;
    for (const std::string& token : tokens) text += (text.empty() ? "" : " ") + token;
    return text;
}
