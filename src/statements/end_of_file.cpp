#include "statements/end_of_file.h"

#include "driver/report.h"
#include "driver/settings.h"
#include "statements/blocks.h"

namespace {

[[noreturn]] void FailUnclosed(const std::string& block, const std::vector<std::string>& findings) {
    std::string lines = "\nERROR: Unclosed " + block + "!\n";
    for (const std::string& finding : findings) lines += finding + "\n";
    ReportFatal("Transpilation failed: Unclosed " + block, lines);
}

std::string Starting(const std::string& what, int line, const std::string& missing) {
    return what + " starting at line " + std::to_string(line) + " is missing " + missing;
}

std::string OpenFunction(const State& state) {
    return Starting("Function '" + state.functionName + "'", state.functionLine, "'EndFunction'");
}

std::string OpenMethod(const std::string& name, int line) {
    return Starting("Method '" + name + "'", line, "'EndMethod'");
}

std::string OpenType(const std::string& name, int line) {
    return Starting("Type '" + name + "'", line, "'EndType'");
}

std::string OpenExtern(const State& state) {
    return Starting("Extern block", state.externLine, "'EndExtern'");
}

void CheckLoops(const State& state) {
    std::vector<std::string> findings;
    for (int line : state.repeatStack)
        findings.push_back(Starting("Repeat loop", line, "'Until' or 'Forever'"));
    if (!findings.empty()) FailUnclosed("Repeat block(s)", findings);
    for (int line : state.ifStack) findings.push_back(Starting("If block", line, "'EndIf'"));
    if (!findings.empty()) FailUnclosed("If block(s)", findings);
    for (std::size_t i = 0; i < state.loopStack.size(); ++i) {
        const std::string& kind = state.loopKindStack[i];
        findings.push_back(
            Starting(kind + " loop", state.loopStack[i], std::string("'") + LoopCloser(kind) + "'"));
    }
    if (!findings.empty()) FailUnclosed("loop block(s)", findings);
}

}  // namespace

void FailUnclosedType(const std::string& name, int line) {
    FailUnclosed("Type block", {OpenType(name, line)});
}

void FailUnclosedMethod(const std::string& name, int line) {
    FailUnclosed("Method block", {OpenMethod(name, line)});
}

std::string UnclosedExtern(const State& state) {
    if (!state.inExtern || state.externLine != state.unclosedExtern) return {};
    return OpenExtern(state) + "\n";
}

void CheckBlocksClosed(const State& state) {
    if (state.inFunction) FailUnclosed("Function block", {OpenFunction(state)});
    if (state.inMethod) FailUnclosedMethod(state.methodName, state.methodLine);
    if (!state.inType && state.selectDepth >= 1)
        FailUnclosed("Select block", {Starting("Select block", state.selectLine, "'EndSelect'")});
    if (state.inType) {
        if (state.passesOverType) settings.currentLine = state.typeLine;
        FailUnclosedType(state.typeName, state.typeLine);
    }
    CheckLoops(state);
    if (state.inPreCalc)
        FailUnclosed("PreCalc block", {Starting("PreCalc block", state.preCalcLine, "'EndPreCalc'")});
    if (state.inExtern) FailUnclosed("Extern block", {OpenExtern(state)});
    if (!state.withLines.empty())
        FailUnclosed("With block", {Starting("With block", state.withLines.back(), "'EndWith'")});
    CheckClosers(state);
}
