#include "statements/dispatch.h"

#include <string>
#include <unordered_map>

#include "driver/report.h"
#include "driver/settings.h"
#include "lexer/lexer.h"
#include "statements/assignments.h"
#include "statements/class_bodies.h"
#include "statements/conditionals.h"
#include "statements/debug_hooks.h"
#include "statements/declarations.h"
#include "statements/for_loops.h"
#include "statements/include_statement.h"
#include "statements/loops.h"
#include "statements/objects.h"
#include "statements/precalc_block.h"
#include "statements/print_input.h"
#include "statements/returns.h"
#include "statements/routines.h"
#include "statements/second_pass.h"
#include "statements/selects.h"
#include "statements/seq_statements.h"
#include "statements/simple.h"
#include "statements/timers.h"
#include "statements/with.h"
#include "symbols/first_pass.h"
#include "symbols/scopes.h"

namespace {

// Done by the first pass.
void NothingToEmit(State& state, TokenSpan tokens) {
    (void)state;
    (void)tokens;
}

// In the order of comparison.
const DispatchRow dispatchTable[] = {
    {"with", TranslateWith, Place::Routine},
    {"endwith", TranslateEndWith, Place::Anywhere},
    {"autocall", TranslateAutoCall, Place::Routine},
    {"stopcall", TranslateStopCall, Place::Routine},
    {"include", TranslateInclude, Place::Anywhere},
    {"import", NothingToEmit, Place::Anywhere},
    {"linker", NothingToEmit, Place::Anywhere},
    {"useconsole", NothingToEmit, Place::Anywhere},
    {"print", TranslatePrint, Place::Routine},
    {"input", TranslateInput, Place::Routine},
    {"function", TranslateFunction, Place::Anywhere},
    {"endfunction", TranslateEndFunction, Place::Anywhere},
    {"method", TranslateMethod, Place::Anywhere},
    {"endmethod", TranslateEndMethod, Place::Anywhere},
    {"return", TranslateReturn, Place::Anywhere},
    {"end", TranslateEnd, Place::Anywhere},
    {"seqadd", TranslateSeqStatement, Place::Routine},
    {"seqinsert", TranslateSeqStatement, Place::Routine},
    {"seqset", TranslateSeqStatement, Place::Routine},
    {"seqdelete", TranslateSeqStatement, Place::Routine},
    {"seqdeleteat", TranslateSeqStatement, Place::Routine},
    {"seqclear", TranslateSeqStatement, Place::Routine},
    {"seqaddfirst", TranslateSeqStatement, Place::Routine},
    {"seqreverse", TranslateSeqStatement, Place::Routine},
    {"seqsort", TranslateSeqStatement, Place::Routine},
    {"seqswap", TranslateSeqStatement, Place::Routine},
    {"seqfromarray", TranslateSeqStatement, Place::Routine},
    {"remove", TranslateRemove, Place::Routine},
    {"exit", TranslateExit, Place::Anywhere},
    {"continue", TranslateContinue, Place::Anywhere},
    {"type", TranslateTypeOpener, Place::Anywhere},
    {"element", TranslateTypeOpener, Place::Anywhere},
    {"endelement", TranslateEndElement, Place::Anywhere},
    {"endtype", TranslateEndType, Place::Anywhere},
    {"until", TranslateUntil, Place::Routine},
    {"repeat", TranslateRepeat, Place::Routine},
    {"forever", TranslateForever, Place::Routine},
    {"while", TranslateWhile, Place::Routine},
    {"wend", TranslateWend, Place::Routine},
    {"eachseq", TranslateEachSeq, Place::Routine},
    {"if", TranslateIf, Place::Routine},
    {"elseif", TranslateElseIf, Place::Routine},
    {"else", TranslateElse, Place::Routine},
    {"endif", TranslateEndIf, Place::Routine},
    {"select", TranslateSelect, Place::Routine},
    {"endselect", TranslateEndSelect, Place::Routine},
    {"case", TranslateCase, Place::Routine},
    {"default", TranslateDefault, Place::Routine},
    {"for", TranslateFor, Place::Routine},
    {"next", TranslateNext, Place::Routine},
    {"nextseq", TranslateNext, Place::Routine},
    {"field", TranslateDeclaration, Place::Anywhere},
    {"local", TranslateDeclaration, Place::Anywhere},
    {"global", TranslateDeclaration, Place::Anywhere},
    {"const", TranslateDeclaration, Place::Anywhere},
    {"public", TranslateAccess, Place::Anywhere},
    {"private", TranslateAccess, Place::Anywhere},
    {"extern", TranslateExtern, Place::Anywhere},
    {"endextern", TranslateEndExtern, Place::Anywhere},
};

// A Field may bear the name of a statement; "next = node" in a Method means the Field.
bool AssignsOwnField(TokenSpan tokens) {
    return Is(tokens[1], "=") && currentClass != nullptr && FindField(*currentClass, tokens[0]) != nullptr;
}

bool IsAccessWord(const std::string& keyword) { return Is(keyword, "public") || Is(keyword, "private"); }

// Code at the top level or in a class body outside its Methods would never run.
void CheckPlace(const State& state, const DispatchRow* row, const std::string& word) {
    if (state.inFunction || state.inMethod) return;
    if (row == nullptr || row->place == Place::Routine)
        ReportFatal("'" + word + "' can only be used inside a Function or Method");
}

}  // namespace

const DispatchRow* FindDispatchRow(const std::string& keyword) {
    static const auto* index = [] {
        auto* rows = new std::unordered_map<std::string, const DispatchRow*>;
        for (const DispatchRow& row : dispatchTable) rows->emplace(row.keyword, &row);
        return rows;
    }();
    auto found = index->find(keyword);
    return found == index->end() ? nullptr : found->second;
}

// The body of a Type that an earlier file has declared already.
static void PassOverType(State& state, const std::string& keyword) {
    if (!Is(keyword, "endtype") && !Is(keyword, "endelement")) return;
    state.passesOverType = false;
    state.inType = false;
    state.cls = nullptr;
    state.typeName.clear();
}

void DispatchStatement(State& state, TokenSpan tokens) {
    if (tokens.empty()) return;
    const std::string& first = tokens[0];
    std::string keyword = Lower(first);
    if (state.passesOverType) {
        PassOverType(state, keyword);
        return;
    }
    if (state.inPreCalc || Is(keyword, "precalc")) {
        TranslatePreCalc(state, tokens);
        return;
    }
    const DispatchRow* row = FindDispatchRow(keyword);
    // Access words are words of the language in lower case only.
    if (row != nullptr && IsAccessWord(keyword) && first != keyword) row = nullptr;
    if (row != nullptr && AssignsOwnField(tokens)) row = nullptr;
    CheckPlace(state, row, first);
    bool label = Is(keyword, "case") || Is(keyword, "default") || Is(keyword, "endselect");
    if (state.selectDepth > 0 && !label) PrepareInSelect(state, keyword);
    if (settings.debugMode && IsExecutableStatement(keyword)) EmitStatementHook(state, keyword);
    CheckNullAssignment(state, tokens);
    if (row != nullptr)
        row->handler(state, tokens);
    else
        TranslateAssignmentOrCall(state, tokens);
}
