#include "statements/handlers.h"

#include "base/report.h"
#include "base/settings.h"
#include "statements/words.h"

namespace {

// A beginner's way of closing a block.
struct TwoWordCloser {
    const char* word;
    const char* message;
};
const TwoWordCloser twoWordClosers[] = {
    {"if", "Syntax error: Use 'EndIf' instead of 'End If'"},
    {"function", "Syntax error: Use 'EndFunction' instead of 'End Function'"},
    {"method", "Syntax error: Use 'EndMethod' instead of 'End Method'"},
    {"type", "Syntax error: Use 'EndType' instead of 'End Type'"},
    {"select", "Syntax error: Use 'EndSelect' instead of 'End Select'"},
};

}  // namespace

// End
//     exit(0);
// Any other second word is passed over.
void TranslateEnd(State& state, TokenSpan tokens) {
    for (const TwoWordCloser& closer : twoWordClosers)
        if (IsWord(tokens[1], closer.word)) ReportFatal(closer.message);
    if (!InRoutine(state))
        ReportFatal("'" + tokens[0] + "' can only be used inside a Function or Method", tokens.Slice(0, 1));
    EmitLine(state, "exit(0);");
    state.routine.reachable = false;
}

// Exit
//     break;
void TranslateExit(State& state, TokenSpan tokens) {
    if (!CanBreak(state))
        ReportFatal("'Exit' can only be used inside a loop or Select block" +
                    Hint{"Return leaves a Function"});
    RefuseMore(tokens, 1);
    EmitLine(state, "break;");
    NoteBreak(state);
}

// Continue
//     continue;
void TranslateContinue(State& state, TokenSpan tokens) {
    if (!CanContinue(state))
        ReportFatal("'Continue' can only be used inside a For loop" +
                    Hint{"It goes on with the next round of the innermost loop; there is none here"});
    RefuseMore(tokens, 1);
    NoteContinue(state);
    EmitLine(state, "continue;");
    state.routine.reachable = false;
}

// public | private
//     private:          once the next member comes
void TranslateAccess(State& state, TokenSpan tokens) {
    if (!state.inType)
        ReportFatal("unexpected '" + tokens[0] + "' keyword." +
                        Hint{"It stands in a Type, before Fields and Methods"},
                    tokens.Slice(0, 1));
    RefuseMore(tokens, 1);
    state.access = tokens[0];
}

// Extern
// Nothing comes out: the first pass has taken the declarations up to EndExtern.
void TranslateExtern(State& state, TokenSpan tokens) {
    const Elsewhere opener = {settings.currentFile, state.externLine, {}, openedHere, "EndExtern"};
    if (state.inExtern)
        ReportFatal("Extern already declared" + Hint{"The Extern before has to end first, with EndExtern"},
                    {}, opener);
    RefuseMore(tokens, 1);
    state.inExtern = true;
    state.externLine = state.place.line;
}

// EndExtern
void TranslateEndExtern(State& state, TokenSpan tokens) {
    if (!state.inExtern) ReportFatal("Prior Extern not declared" + Hint{"No Extern is open here"});
    RefuseMore(tokens, 1);
    state.inExtern = false;
}
