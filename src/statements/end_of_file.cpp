#include "statements/end_of_file.h"

#include "base/report.h"
#include "base/settings.h"
#include "statements/blocks.h"

namespace {

[[noreturn]] void FailUnclosed(const std::string& block, const std::vector<UnclosedBlock>& findings) {
    ReportOpenBlocks("\nERROR: Unclosed " + block + "!\n", findings,
                     "Transpilation failed: Unclosed " + block);
}

// `word` opens the block, which is called after it, and by its name or kind; `closer` is missing, or another word.
UnclosedBlock Starting(const std::string& word, const std::string& what, int line, const std::string& closer,
                       const std::string& other = {}) {
    const std::string report = word + " " + what + " starting at line " + std::to_string(line) +
                               " is missing '" + closer + "'" + (other.empty() ? "" : " or '" + other + "'");
    return {line, report, word, other.empty() ? closer : ""};
}

UnclosedBlock OpenFunction(const State& state) {
    return Starting("Function", "'" + state.routine.name + "'", state.routine.line, "EndFunction");
}

UnclosedBlock OpenMethod(const std::string& name, int line) {
    return Starting("Method", "'" + name + "'", line, "EndMethod");
}

UnclosedBlock OpenType(const State& state) {
    UnclosedBlock open = Starting("Type", "'" + state.typeName + "'", state.typeLine, "EndType");
    if (!state.isElement) return open;
    open.closer = "EndElement";
    open.hint = "An Element ends with EndElement";
    return open;
}

UnclosedBlock OpenRepeat(int line) {
    UnclosedBlock open = Starting("Repeat", "loop", line, "Until", "Forever");
    open.hint = "A Repeat ends with Until and the condition to end, or with Forever";
    return open;
}

UnclosedBlock OpenExtern(const State& state) {
    return Starting("Extern", "block", state.externLine, "EndExtern");
}

// The blocks of the kind that the file has left open, in their order.
std::vector<const Opener*> Unclosed(const State& state, BlockKind kind) {
    std::vector<const Opener*> found;
    for (std::size_t i = state.place.firstBlock; i < state.blocks.size(); ++i)
        if (state.blocks[i].opener.kind == kind) found.push_back(&state.blocks[i].opener);
    return found;
}

void CheckLoops(const State& state) {
    std::vector<UnclosedBlock> findings;
    for (const Opener* loop : Unclosed(state, BlockKind::Repeat)) findings.push_back(OpenRepeat(loop->line));
    if (!findings.empty()) FailUnclosed("Repeat block(s)", findings);
    for (const Opener* block : Unclosed(state, BlockKind::If))
        findings.push_back(Starting("If", "block", block->line, "EndIf"));
    if (!findings.empty()) FailUnclosed("If block(s)", findings);
    for (const Opener* loop : Unclosed(state, BlockKind::Loop))
        findings.push_back(Starting(loop->word, "loop", loop->line, CloserOf(*loop)));
    if (!findings.empty()) FailUnclosed("loop block(s)", findings);
}

void CheckSelects(const State& state) {
    const std::vector<const Opener*> selects = Unclosed(state, BlockKind::Select);
    if (selects.empty()) return;
    FailUnclosed("Select block", {Starting("Select", "block", selects.back()->line, "EndSelect")});
}

void CheckWiths(const State& state) {
    if (state.withs.size() <= state.place.firstWith) return;
    FailUnclosed("With block", {Starting("With", "block", state.withs.back().line, "EndWith")});
}

}  // namespace

void FailUnclosedType(const State& state) { FailUnclosed("Type block", {OpenType(state)}); }

void FailUnclosedMethod(const std::string& name, int line) {
    FailUnclosed("Method block", {OpenMethod(name, line)});
}

std::vector<UnclosedBlock> UnclosedExtern(const State& state) {
    if (!state.inExtern || state.externLine != state.unclosedExtern) return {};
    return {OpenExtern(state)};
}

Elsewhere OpenAround(const State& state) {
    if (!state.routine.openParts.empty()) return {};
    if (InFunction(state)) return {settings.currentFile, state.routine.line, {}, openedHere, "EndFunction"};
    if (InMethod(state)) return {settings.currentFile, state.routine.line, {}, openedHere, "EndMethod"};
    const char* const closer = state.isElement ? "EndElement" : "EndType";
    return {settings.currentFile, state.inType ? state.typeLine : 0, {}, openedHere, closer};
}

void CheckBlocksClosed(const State& state) {
    if (InFunction(state)) FailUnclosed("Function block", {OpenFunction(state)});
    if (InMethod(state)) FailUnclosedMethod(state.routine.name, state.routine.line);
    if (!state.inType) CheckSelects(state);
    if (state.inType) {
        if (state.passesOverType) settings.currentLine = state.typeLine;
        FailUnclosedType(state);
    }
    CheckLoops(state);
    if (state.inPreCalc)
        FailUnclosed("PreCalc block", {Starting("PreCalc", "block", state.preCalcLine, "EndPreCalc")});
    if (state.inExtern) FailUnclosed("Extern block", {OpenExtern(state)});
    CheckWiths(state);
    CheckClosers(state);
}

void CheckPartClosed(const State& state) {
    CheckSelects(state);
    CheckLoops(state);
    CheckWiths(state);
    CheckClosers(state);
}
