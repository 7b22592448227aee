// Lines in, statements out. A line may be continued ("~ ~" or "_" at its end) and may hold several
// statements ("|" between them); every statement goes to the dispatch table.
#include "statements/second_pass.h"

#include "driver/report.h"
#include "driver/settings.h"
#include "lexer/source_reader.h"
#include "statements/dispatch.h"
#include "statements/end_of_file.h"
#include "statements/inline_cpp.h"
#include "statements/line_writer.h"
#include "statements/with.h"

namespace {

// The physical lines of the file; the lexer carries the number of the line on which a statement starts.
struct LineSource {
    SourceReader reader;
    Lexer& lexer;
    int physicalLine = 0;

    bool AtEnd() const { return reader.AtEnd(); }
    std::string Next() {
        ++physicalLine;
        return reader.NextLine();
    }
};

void LexCounted(State& state, LineSource& lines, const std::string& raw) {
    lines.lexer.lineNumber = lines.physicalLine - 1;
    lines.lexer.LexLine(raw, false, true, false);
    state.currentLine = lines.physicalLine;
    state.lineIndent = static_cast<int>(lines.lexer.GetIndent());
    settings.currentLine = lines.physicalLine;
}

std::string LastToken(const Lexer& lexer, int back = 0) { return lexer.GetToken(lexer.TokenCount() - 1 - back); }

std::string WithoutTildes(std::string text) {
    std::size_t kept = 0;
    for (char c : text)
        if (c != '~') text[kept++] = c;
    text.resize(kept);
    return text;
}

std::string WithoutComment(const std::string& raw) {
    std::size_t comment = CommentStart(raw);
    return comment == std::string::npos ? raw : raw.substr(0, comment);
}

// A line starts a join with two tildes at its end; the join goes on while one of the two is there.
void JoinTildeLines(LineSource& lines, std::string& text) {
    Lexer& lexer = lines.lexer;
    if (lexer.TokenCount() < 2 || LastToken(lexer) != "~" || LastToken(lexer, 1) != "~") return;
    text = WithoutTildes(WithoutComment(text));
    bool more = true;
    while (more && !lines.AtEnd()) {
        text += WithoutComment(lines.Next());
        lexer.LexLine(text, false, false, true);
        more = LastToken(lexer) == "~" || LastToken(lexer, 1) == "~";
        text = WithoutTildes(text);
    }
    lexer.LexLine(text, false, false, false);
}

void JoinUnderscoreLines(State& state, LineSource& lines, std::string& text) {
    Lexer& lexer = lines.lexer;
    if (LastToken(lexer) != "_") return;
    text = CutAtContinuation(text);
    bool more = true;
    while (more && !lines.AtEnd()) {
        std::string piece = lines.Next();
        piece.erase(0, piece.find_first_not_of(" \t"));
        lexer.LexLine(piece, false, false, true);
        more = LastToken(lexer) == "_";
        if (settings.outputComments) AddComment(state, CommentOf(piece));
        text += " " + (more ? CutAtContinuation(piece) : WithoutComment(piece));
    }
    lexer.LexLine(text, false, false, false);
}

bool IsSingleLineIf(const Tokens& tokens) {
    if (tokens.empty() || Lower(tokens.front()) != "if") return false;
    for (const std::string& token : tokens)
        if (token.size() == 4 && Lower(token) == "then") return true;
    return false;
}

std::string Joined(TokenSpan tokens) {
    std::string text;
    for (const std::string& token : tokens) text += (text.empty() ? "" : " ") + token;
    return text;
}

void TranslateStatement(State& state, TokenSpan tokens) {
    if (tokens.empty()) return;
    if (settings.traceMode) state.traceText = Joined(tokens);
    if (!MentionsIts(tokens)) {
        DispatchStatement(state, tokens);
        return;
    }
    std::string keyword = Lower(tokens[0]);
    bool asWritten = keyword == "with" || keyword == "precalc";
    Tokens substituted = asWritten ? Tokens(tokens.begin(), tokens.end()) : SubstituteIts(state, tokens);
    DispatchStatement(state, substituted);
}

void TranslateStatements(State& state, const Tokens& line) {
    Tokens tokens = line;  // the lexer is used again for files that this line includes
    TokenSpan all(tokens);
    if (IsSingleLineIf(tokens)) {
        TranslateStatement(state, all);
        return;
    }
    std::size_t start = 0;
    for (std::size_t i = 0; i <= tokens.size(); ++i) {
        if (i < tokens.size() && tokens[i] != "|") continue;
        TranslateStatement(state, all.Slice(start, i));
        start = i + 1;
    }
}

void TranslateLine(State& state, LineSource& lines) {
    std::string text = lines.Next();
    LexCounted(state, lines, text);
    while (lines.lexer.TokenCount() > 0 && Lower(lines.lexer.tokens.front()) == "inlinecpp") {
        CopyInlineCpp(state, [&](std::string& line) {
            if (lines.AtEnd()) return false;
            line = lines.Next();
            return true;
        });
        if (lines.AtEnd()) return;
        text = lines.Next();
        LexCounted(state, lines, text);
    }
    if (settings.outputComments) AddComment(state, CommentOf(text));
    JoinTildeLines(lines, text);
    JoinUnderscoreLines(state, lines, text);
    TranslateStatements(state, lines.lexer.tokens);
    FlushComment(state);
}

}  // namespace

void RunSecondPass(State& state, Lexer& lexer, const std::string& source) {
    LineSource lines{SourceReader(), lexer};
    if (!lines.reader.Open(source)) ReportFatal("Cannot read '" + source + "'.");
    while (!lines.AtEnd()) TranslateLine(state, lines);
    CheckBlocksClosed(state);
}
