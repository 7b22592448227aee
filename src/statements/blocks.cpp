#include "statements/blocks.h"

#include "driver/report.h"
#include "driver/settings.h"
#include "statements/state.h"

namespace {

constexpr std::size_t deepest = 1000;  // open blocks

struct KindWords {
    const char* name;     // "If block"
    const char* missing;  // closer of the kind
};

const KindWords& Words(BlockKind kind) {
    static const KindWords words[] = {
        {"If block", "EndIf"}, {"loop", "Next"}, {"Repeat loop", "Until"}, {"Select block", "EndSelect"}};
    return words[static_cast<int>(kind)];
}

int RoutineLine(const State& state) {
    if (state.inMethod) return state.methodLine;
    return state.inFunction ? state.functionLine : 0;
}

// Of the innermost block.
const char* CloserOf(const State& state, const OpenBlock& inner) {
    const bool isLoop = inner.kind == BlockKind::Loop && !state.loopKindStack.empty();
    return isLoop ? LoopCloser(state.loopKindStack.back()) : Words(inner.kind).missing;
}

void NoteCrossing(State& state, const std::string& closer, const OpenBlock& closed, const OpenBlock& inner) {
    if (!state.crossingMessage.empty()) return;
    const std::string start =
        std::string(Words(closed.kind).name) + " of line " + std::to_string(closed.line);
    state.crossingLine = settings.currentLine;
    if (closed.routineLine != RoutineLine(state))
        state.crossingMessage = "'" + closer + "' closes the " + start + ", which stands in another routine";
    else
        state.crossingMessage = "'" + closer + "' closes the " + start + " while the " +
                                Words(inner.kind).name + " of line " + std::to_string(inner.line) +
                                " is still open (missing '" + CloserOf(state, inner) + "')";
}

}  // namespace

const char* LoopCloser(const std::string& kind) {
    if (kind == "While") return "Wend";
    return kind == "EachSeq" ? "NextSeq" : "Next";
}

OpenBlock& OpenNewBlock(State& state, BlockKind kind) {
    if (state.blocks.size() >= deepest) ReportFatal("Blocks are nested too deeply");
    OpenBlock& block = state.blocks.emplace_back();
    block.kind = kind;
    block.line = state.currentLine;
    block.routineLine = RoutineLine(state);
    return block;
}

OpenBlock CloseBlock(State& state, BlockKind kind, const std::string& closer) {
    std::size_t at = state.blocks.size();
    while (at > 0 && state.blocks[at - 1].kind != kind) --at;
    if (at == 0) ReportFatal("'" + closer + "' without an open " + Words(kind).name);
    if (at != state.blocks.size() || state.blocks[at - 1].routineLine != RoutineLine(state))
        NoteCrossing(state, closer, state.blocks[at - 1], state.blocks.back());
    OpenBlock closed = std::move(state.blocks[at - 1]);
    state.blocks.erase(state.blocks.begin() + static_cast<std::ptrdiff_t>(at - 1));
    return closed;
}

void CheckCrossedBlocks(const State& state) {
    if (state.crossingMessage.empty()) return;
    settings.currentLine = state.crossingLine;
    ReportFatal(state.crossingMessage);
}

bool InnermostBlockIs(const State& state, BlockKind kind) {
    return !state.blocks.empty() && state.blocks.back().kind == kind;
}
