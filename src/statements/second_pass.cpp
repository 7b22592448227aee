#include "statements/second_pass.h"

#include "base/debugger.h"
#include "base/report.h"
#include "base/settings.h"
#include "expressions/sequence_walks.h"
#include "expressions/tree.h"
#include "lexer/source_lines.h"
#include "prelude/program_uses.h"
#include "prelude/support.h"
#include "statements/end_of_file.h"
#include "statements/line_writer.h"
#include "statements/precalc_block.h"
#include "statements/recovery.h"
#include "statements/shadowing.h"
#include "statements/with.h"
#include "symbols/modules.h"
#include "symbols/own_names.h"
#include "symbols/uses.h"

void (*watchStatement)(const State& state, TokenSpan statement) = nullptr;

namespace {

void TranslateStatement(State& state, TokenSpan tokens) {
    ForgetNodes();
    if (settings.traceMode) state.place.traceText = tokens.Text() + " ";
    if (state.inPreCalc || !MentionsIts(state, tokens)) {
        DispatchStatement(state, tokens);
        return;
    }
    const Keyword keyword = tokens.KeywordAt(0);
    const bool asWritten = keyword == Keyword::With || keyword == Keyword::PreCalc;
    const Tokens substituted = asWritten ? tokens.Copy() : SubstituteIts(state, tokens);
    NoteSubstitution(substituted);
    DispatchStatement(state, substituted);
}

// Statements that may hold others on their line find out where its comment belongs.
bool PlacesComment(Keyword keyword) {
    return keyword == Keyword::If || keyword == Keyword::ElseIf || keyword == Keyword::Else;
}

void TranslateLine(State& state, const SourceLines& lines) {
    state.place.line = lines.Line();
    state.place.indent = static_cast<int>(lines.Indent());
    settings.currentLine = lines.Line();
    if (settings.outputComments) state.place.lineComment = lines.Comment();
    state.place.statement = 0;
    const LineStatements statements = lines.Statements();
    for (const TokenSpan statement : statements) {
        const bool last = state.place.statement + 1 == statements.size();
        if (last && !PlacesComment(statement.KeywordAt(0))) PlaceComment(state);
        TranslateOrRecover(state, statement, TranslateStatement);
        ++state.place.statement;
    }
    FlushComment(state);
}

void NoteOpened(State& state, int opened) {
    if (opened != 0 && InRoutine(state)) NoteInlineBraces(state, opened);
}

}  // namespace

void ReadStatements(State& state, const std::string& source) {
    SourceLines lines(Reading::SecondPass);
    if (!lines.Open(source)) ReportFatal("Cannot read '" + source + "'.");
    const bool isModule = IsModule(source), checked = ChecksValues();
    int opened = 0;  // braces of inline C++ since the line before
    lines.onInlineCpp = [&](const InlineLine& line) {
        if (state.inPreCalc) return NoteInlineInPreCalc(state, line.line);
        opened += line.braces;
        if (isModule)
            RequireSupport(checked ? Support::Misuse : Support::NoMisuse);
        else
            NoteInlineCpp(line.text);
        NoteInlineCppInLoops(line.text);
        NoteInlineJumps(state);
        GivePlainNames(state, line.text);
        const std::size_t code = line.text.find_first_not_of(" \t");
        if (code != std::string::npos && line.text.compare(code, 2, "//") != 0)
            state.routine.bareLabel = false;
        EmitInlineCpp(state, line);
    };
    while (lines.Next()) {
        NoteOpened(state, opened);
        opened = 0;
        TranslateLine(state, lines);
    }
    NoteOpened(state, opened);
    settings.currentLine = lines.Line();
    if (lines.InlineCppOpen())
        ReportFatal("No EndInlinePHP, unexpected end of file." +
                    Hint{"The C++ that InlineCpp begins ends with a line that holds EndInlineCpp alone"});
}

void RunSecondPass(State& state, const std::string& source) {
    ResetFreshNames();
    ReadStatements(state, source);
    if (!state.blocksAreDoubtful) CheckBlocksClosed(state);
}
