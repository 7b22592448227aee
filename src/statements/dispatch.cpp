#include "statements/dispatch.h"

#include <array>
#include <string>

#include "base/debugger.h"
#include "base/paths.h"
#include "base/report.h"
#include "base/settings.h"
#include "collect/first_pass.h"
#include "statements/assignments.h"
#include "statements/class_bodies.h"
#include "statements/debug_hooks.h"
#include "statements/debugger_hooks.h"
#include "statements/end_of_file.h"
#include "statements/handlers.h"
#include "statements/precalc_block.h"
#include "statements/second_pass.h"
#include "statements/selects.h"
#include "symbols/scopes.h"

// Import "file.decls" | Linker "flags" | UseConsole
// Nothing comes out: the first pass has done it.
void NothingToEmit(State&, TokenSpan) {}

// Lines that begin with it never come here.
void RefuseInlineCpp(State&, TokenSpan tokens) {
    ReportFatal("'" + tokens[0] + "' must stand alone on its line", tokens.Slice(0, 1));
}

// Whoever reads a block like that has met its closer before.
void RefuseStrayCloser(State&, TokenSpan tokens) {
    const std::string block = tokens[0].substr(std::string("End").size());
    ReportFatal("'" + tokens[0] + "' without an open " + block + " block", tokens.Slice(0, 1));
}

namespace {

const DispatchRow dispatchTable[] = {
#define ROW(keyword, handler, place) {Keyword::keyword, handler, Place::place},
#include "statements/handlers.inc"
#undef ROW
};

// A Field may bear the name of a statement; "next = node" in a Method means the Field.
bool AssignsOwnField(TokenSpan tokens) {
    return tokens.SignAt(1) == '=' && currentClass != nullptr &&
           FindField(*currentClass, tokens.At(0)) != nullptr;
}

// Access words are words of the language in lower case only.
bool IsNoAccessWord(TokenSpan tokens) {
    const Keyword keyword = tokens.KeywordAt(0);
    return (keyword == Keyword::Public || keyword == Keyword::Private) && tokens[0] != TextOf(keyword);
}

[[noreturn]] void FailMisplaced(const State& state, TokenSpan tokens, bool isStatement) {
    const std::string message = "'" + tokens[0] + "' can only be used inside a Function or Method";
    const std::vector<UnclosedBlock> blocks = UnclosedExtern(state);
    const TokenSpan word = tokens.Slice(0, 1);
    if (!blocks.empty()) ReportFatal(message, blocks);
    if (state.inType && tokens.SignAt(1) == ':')
        ReportFatal(message + Hint{"A Field begins with Field: Field " + tokens.Text("")}, word);
    if (state.inType && tokens.KeywordAt(1) == Keyword::As)
        ReportFatal(message + Hint{"A Field begins with Field: Field " + tokens[0] + ":Int"}, word);
    const bool isKnown = isStatement || tokens.SignAt(1) == '=' || FindFunction(tokens[0]) != nullptr;
    if (!isKnown) ReportFatal(message, word, Sought::Statement);
    const std::string place = "What the program does stands between Function Main and EndFunction";
    const char* const partOf = ". A file that others include inside a Function is checked with them";
    ReportFatal(message + Hint{place + (HasMainFunction() ? "" : partOf)}, word);
}

// Code at the top level or in a class body outside its Methods would never run.
void CheckPlace(const State& state, const DispatchRow* row, TokenSpan tokens) {
    if (InRoutine(state)) return;
    const std::string& word = tokens[0];
    if (state.inType && tokens.size() == 1 && IsNoAccessWord(tokens))
        ReportFatal("'" + word + "' is written in lower case here: " + Lower(word), Tokens{word});
    const bool misplaced = row == nullptr || row->place == Place::Routine;
    if (misplaced) FailMisplaced(state, tokens, row != nullptr);
}

// What stands at the top level or in a class body, and so nowhere in a file that a routine includes.
void RefuseInPart(const State& state, TokenSpan tokens) {
    if (!Has(tokens.KeywordAt(0), trait::outside) || AssignsOwnField(tokens) || IsNoAccessWord(tokens))
        return;
    ReportFatal("'" + tokens[0] +
                    "' cannot stand here: " + StripFolder(state.routine.openParts.back()->source) +
                    " is included inside a Function or Method, so it holds statements and Locals only",
                tokens.Slice(0, 1));
}

}  // namespace

const DispatchRow* FindDispatchRow(Keyword keyword) {
    static const auto index = [] {
        std::array<const DispatchRow*, keywordCount> rows{};
        for (const DispatchRow& row : dispatchTable) rows[IndexOf(row.keyword)] = &row;
        return rows;
    }();
    return index[IndexOf(keyword)];
}

// Nothing is known about the members of a Type that is never closed; the block to report may be one in it.
static void PassOverUnclosedType(State& state, TokenSpan tokens) {
    switch (tokens.KeywordAt(0)) {
        case Keyword::Method:
            if (InMethod(state)) FailUnclosedMethod(state.routine.name, state.routine.line);
            state.routine.kind = RoutineKind::Method;
            state.routine.name = tokens[1];
            state.routine.line = state.place.line;
            break;
        case Keyword::EndMethod:
            state.routine = {};
            break;
        case Keyword::Type:
        case Keyword::Element:
        case Keyword::EndType:
        case Keyword::EndElement:
        case Keyword::Function:
            settings.currentLine = state.typeLine;
            FailUnclosedType(state);
        default:
            break;
    }
}

// The body of a Type that is declared elsewhere already.
static void PassOverType(State& state, Keyword keyword) {
    if (keyword == Keyword::Type || keyword == Keyword::Element || keyword == Keyword::Function) {
        settings.currentLine = state.typeLine;
        FailUnclosedType(state);
    }
    if (keyword != Keyword::EndType && keyword != Keyword::EndElement) return;
    state.passesOverType = false;
    state.inType = false;
    state.cls = nullptr;
    state.typeName.clear();
}

void DispatchStatement(State& state, TokenSpan tokens) {
    if (tokens.empty()) return;
    const Keyword keyword = tokens.KeywordAt(0);
    if (state.passesOverType) {
        if (state.cls == nullptr)
            PassOverUnclosedType(state, tokens);
        else
            PassOverType(state, keyword);
        return;
    }
    if (!state.routine.openParts.empty()) RefuseInPart(state, tokens);
    if (state.inPreCalc || keyword == Keyword::PreCalc) {
        if (!state.inPreCalc && watchStatement != nullptr) watchStatement(state, tokens);
        TranslatePreCalc(state, tokens);
        return;
    }
    const DispatchRow* row = FindDispatchRow(keyword);
    if (row != nullptr && (IsNoAccessWord(tokens) || AssignsOwnField(tokens))) row = nullptr;
    CheckPlace(state, row, tokens);
    if (watchStatement != nullptr) watchStatement(state, tokens);
    PrepareInSelect(state, keyword);
    if (forDebugger)
        EmitDebuggerHook(state, keyword);
    else if (settings.debugMode && !Has(keyword, trait::declares))
        EmitStatementHook(state, keyword);
    CheckNullAssignment(tokens);
    if (row != nullptr)
        row->handler(state, tokens);
    else
        TranslateAssignmentOrCall(state, tokens);
}
