#include "symbols/source_lines.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>

#include "driver/settings.h"
#include "lexer/token_text.h"

namespace {

bool EndsInTilde(const Tokens& tokens) {
    const std::size_t count = tokens.size();
    return (count > 0 && tokens[count - 1]->sign == '~') || (count > 1 && tokens[count - 2]->sign == '~');
}

bool EndsInTwoTildes(const Tokens& tokens) {
    const std::size_t count = tokens.size();
    return count > 1 && tokens[count - 1]->sign == '~' && tokens[count - 2]->sign == '~';
}

bool EndsInUnderscore(const Tokens& tokens) { return !tokens.empty() && Is(tokens.back()->text, "_"); }

std::string WithoutTildes(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '~'), text.end());
    return text;
}

std::string WithoutComment(std::string_view raw) { return std::string(raw.substr(0, CommentStart(raw))); }

std::string WithoutIndent(std::string_view raw) {
    const std::size_t first = raw.find_first_not_of(" \t");
    return first == std::string_view::npos ? std::string() : std::string(raw.substr(first));
}

bool IsSingleLineIf(const Tokens& tokens) {
    return tokens.front()->keyword == Keyword::If &&
           std::any_of(tokens.begin(), tokens.end(),
                       [](Token token) { return token->keyword == Keyword::Then; });
}

// The first four letters of a line as one number, in lower case; blanks behind a shorter end.
constexpr std::uint32_t FourLetters(std::string_view text) {
    std::uint32_t letters = 0;
    for (std::size_t i = 0; i < 4; ++i)
        letters = letters << 8 | (i < text.size() ? static_cast<unsigned char>(text[i] | 0x20) : ' ');
    return letters;
}

bool BeginsLikeName(std::string_view text) {
    switch (FourLetters(text)) {
        case FourLetters("type"):
        case FourLetters("elem"):
        case FourLetters("incl"):
        case FourLetters("inli"):
            return true;
        default:
            return false;
    }
}

// The words that the first pass collects, and "end" in front of another word.
bool BeginsLikeDeclaration(std::string_view text) {
    switch (FourLetters(text)) {
        case FourLetters("impo"):
        case FourLetters("link"):
        case FourLetters("endt"):
        case FourLetters("ende"):
        case FourLetters("end "):
        case FourLetters("end\t"):
        case FourLetters("prec"):
        case FourLetters("fiel"):
        case FourLetters("glob"):
        case FourLetters("cons"):
        case FourLetters("meth"):
        case FourLetters("exte"):
        case FourLetters("func"):
        case FourLetters("publ"):
        case FourLetters("priv"):
            return true;
        default:
            return BeginsLikeName(text);
    }
}

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

bool IsJoinMark(std::string_view text) {
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return !text.empty() && (text.back() == '_' || text.back() == '~');
}

// A quick look that spares most lines the lexer: right about every line that may begin with the word or is
// more than one statement, wrong about some others.
bool MayBegin(std::string_view text, bool (*beginsLikeWord)(std::string_view)) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    if (text.empty()) return false;
    if (beginsLikeWord(text)) return true;
    if (text.find('|') != std::string_view::npos || IsJoinMark(text)) return true;
    if (text.find(';') == std::string_view::npos) return false;
    const std::size_t comment = CommentStart(text);
    return comment != std::string_view::npos && IsJoinMark(text.substr(0, comment));
}

}  // namespace

std::string_view SourceLines::ReadLine() {
    ++physical;
    return reader.TakeLine();
}

// Lines that hold nothing for the reader; with Checking::Strict they are checked all the same.
bool SourceLines::PassOver(std::string_view text) {
    if (checking == Checking::Names) return !MayBegin(text, BeginsLikeName);
    if (checking != Checking::Strict || MayBegin(text, BeginsLikeDeclaration)) return false;
    if (lexer.CheckLine(text)) lastCount = lexer.lineNumber;
    return true;
}

void SourceLines::Lex(std::string_view text) {
    if (checking == Checking::Physical) lexer.lineNumber = physical - 1;
    const bool checked = checking == Checking::Strict || checking == Checking::Physical;
    lexer.LexLine(text, false, checked, !checked);
}

// The joined line. Counting it once more makes the first pass's numbers run behind, which is its way.
void SourceLines::LexAgain(const std::string& text) {
    const bool checked = checking == Checking::Strict || checking == Checking::Physical;
    lexer.LexLine(text, false, checking == Checking::Strict, !checked);
}

void SourceLines::TakeComment(std::string_view raw) {
    if (!settings.outputComments || checking != Checking::Physical) return;
    const std::string found = CommentOf(std::string(raw));
    if (found.empty()) return;
    if (!comment.empty()) comment += " ";
    comment += found;
}

void SourceLines::SkipInlineCpp() {
    metInlineCpp = true;
    inlineCppOpen = true;
    while (inlineCppOpen && !reader.AtEnd()) {
        const std::string_view raw = ReadLine();
        lexer.LexLine(raw, false, false, true);
        if (checking == Checking::Strict) ++lexer.lineNumber;
        if (lexer.tokens.empty()) continue;
        inlineCppOpen = lexer.tokens.front()->keyword != Keyword::EndInlineCpp;
        if (inlineCppOpen && onInlineCpp) onInlineCpp(std::string(raw));
    }
}

// Two tildes begin a join; it goes on while one of the last two tokens is a tilde.
void SourceLines::JoinTildeLines(std::string& text) {
    if (!EndsInTwoTildes(lexer.tokens)) return;
    text = WithoutTildes(WithoutComment(text));
    bool more = true;
    while (more && !reader.AtEnd()) {
        const std::string_view raw = ReadLine();
        TakeComment(raw);
        const std::string piece = WithoutComment(raw);
        lexer.LexLine(piece, false, false, true);
        more = EndsInTilde(lexer.tokens);
        text += WithoutTildes(piece);
    }
    LexAgain(text);
}

void SourceLines::JoinUnderscoreLines(std::string& text) {
    if (!EndsInUnderscore(lexer.tokens)) return;
    text = CutAtContinuation(text);
    bool more = true;
    while (more && !reader.AtEnd()) {
        const std::string piece = WithoutIndent(ReadLine());
        TakeComment(piece);
        lexer.LexLine(piece, false, false, true);
        more = EndsInUnderscore(lexer.tokens);
        text += " " + (more ? CutAtContinuation(piece) : WithoutComment(piece));
    }
    LexAgain(text);
}

void SourceLines::Join(std::string_view first) {
    std::string text(first);
    JoinTildeLines(text);
    JoinUnderscoreLines(text);
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
        if (i < all.size() && all.SignAt(i) != '|') continue;
        if (i > begin) statements.push_back(all.Slice(begin, i));
        begin = i + 1;
    }
}

bool SourceLines::Next() {
    metInlineCpp = false;
    while (!reader.AtEnd()) {
        const std::string_view text = ReadLine();
        start = physical;
        if (PassOver(text)) continue;
        Lex(text);
        comment.clear();
        TakeComment(text);
        if (lexer.tokens.empty() && comment.empty()) continue;
        if (!lexer.tokens.empty() && lexer.tokens.front()->keyword == Keyword::InlineCpp) {
            SkipInlineCpp();
            continue;
        }
        if (EndsInTwoTildes(lexer.tokens) || EndsInUnderscore(lexer.tokens)) Join(text);
        if (lexer.tokens.empty() && comment.empty()) continue;
        lastCount = lexer.lineNumber;
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
