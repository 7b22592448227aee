#include "statements/precalc_block.h"

#include "base/debugger.h"
#include "base/report.h"
#include "base/settings.h"
#include "lexer/lexer.h"
#include "precalc/precalc.h"
#include "statements/definition.h"
#include "symbols/identifiers.h"
#include "symbols/own_names.h"

namespace {

void OpenPreCalc(State& state, TokenSpan tokens) {
    CheckPreCalcHeader(tokens, !InRoutine(state) && !state.inType);
    CheckGlobalName(tokens[1]);
    state.inPreCalc = true;
    LeanOnOthers();
    state.preCalcLine = state.place.line;
    state.preCalcHeader = tokens.Copy();
    state.preCalcInline = {"InlineCpp"};
    state.preCalcBody.clear();
    state.preCalcBodyLines.clear();
}

void CollectBodyLine(State& state, TokenSpan tokens) {
    state.preCalcBody.push_back(tokens);
    state.preCalcBodyLines.push_back(state.place.line);
}

// Safe builds check indices against constants like those of declared arrays.
std::string SizeConstants(const PreCalcTable& table) {
    std::string lines;
    if (!ChecksValues()) return lines;
    for (std::size_t k = 0; k < table.sizes.size(); ++k)
        lines += "\nconst int " + SizeName(SafeName(table.name), static_cast<int>(k)) + " = " +
                 std::to_string(table.sizes[k]) + ";";
    return lines;
}

// Nothing of the block reaches the .cpp.
void ClosePreCalc(State& state) {
    state.inPreCalc = false;
    int line = settings.currentLine;
    PreCalcTable table = EvaluatePreCalc(state.preCalcHeader, state.preCalcBody, state.preCalcBodyLines);
    settings.currentLine = line;
    GlobalDefinition definition;
    definition.name = table.name;
    definition.plain = table.definition + SizeConstants(table);
    definition.isPreCalc = true;
    if (settings.units) {
        definition.declaration = "extern " + table.variable + ";" + SizeConstants(table);
        definition.definition = table.definition;
    }
    PutGlobal(*state.out, definition);
}

}  // namespace

void NoteInlineInPreCalc(State& state, int line) {
    state.preCalcBody.emplace_back(state.preCalcInline);
    state.preCalcBodyLines.push_back(line);
}

void TranslatePreCalc(State& state, TokenSpan tokens) {
    if (!state.inPreCalc)
        OpenPreCalc(state, tokens);
    else if (tokens.KeywordAt(0) == Keyword::EndPreCalc)
        ClosePreCalc(state);
    else
        CollectBodyLine(state, tokens);
}
