#include "statements/second_pass.h"

#include "driver/report.h"
#include "driver/settings.h"
#include "expressions/sequence_walks.h"
#include "lexer/cpp_braces.h"
#include "prelude/program_uses.h"
#include "statements/end_of_file.h"
#include "statements/line_writer.h"
#include "statements/with.h"
#include "symbols/source_lines.h"

namespace {

void TranslateStatement(State& state, TokenSpan tokens) {
    if (settings.traceMode) state.traceText = JoinTokens(tokens);
    if (!MentionsIts(tokens)) {
        DispatchStatement(state, tokens);
        return;
    }
    const Keyword keyword = tokens.KeywordAt(0);
    const bool asWritten = keyword == Keyword::With || keyword == Keyword::PreCalc;
    const Tokens substituted = asWritten ? tokens.Copy() : SubstituteIts(state, tokens);
    DispatchStatement(state, substituted);
}

void TranslateLine(State& state, const SourceLines& lines) {
    state.currentLine = lines.Line();
    state.lineIndent = static_cast<int>(lines.Indent());
    settings.currentLine = lines.Line();
    AddComment(state, lines.Comment());
    for (const TokenSpan& statement : lines.Statements()) TranslateStatement(state, statement);
    FlushComment(state);
}

}  // namespace

void RunSecondPass(State& state, const std::string& source) {
    SourceLines lines(Reading::SecondPass);
    if (!lines.Open(source)) ReportFatal("Cannot read '" + source + "'.");
    CppBraces inlineBraces;
    lines.onInlineCpp = [&](const std::string& line) {
        inlineBraces.Read(line);
        NoteInlineCpp(line);
        NoteInlineCppInLoops(line);
        PutLine(*state.out, settings.traceMode ? line + " //INLINE" : line);
    };
    while (lines.Next()) {
        const int opened = inlineBraces.Take();
        if (opened != 0 && (state.inFunction || state.inMethod)) NoteInlineBraces(state, opened);
        TranslateLine(state, lines);
    }
    settings.currentLine = lines.Line();
    if (lines.InlineCppOpen()) ReportFatal("No EndInlinePHP, unexpected end of file.");
    CheckBlocksClosed(state);
}
