#include "statements/blocks.h"

#include <algorithm>

#include "driver/report.h"
#include "driver/settings.h"
#include "expressions/expression.h"
#include "statements/for_loops.h"
#include "statements/selects.h"
#include "statements/state.h"
#include "symbols/scopes.h"

namespace {

constexpr std::size_t deepest = 1000;  // open blocks

struct KindWords {
    const char* name;     // "If block"
    const char* missing;  // closer of the kind
};

const KindWords& Words(BlockKind kind) {
    static const KindWords words[] = {{"If block", "EndIf"},
                                      {"loop", "Next"},
                                      {"Repeat loop", "Until"},
                                      {"Select block", "EndSelect"},
                                      {"brace of inline C++", "}"}};
    return words[static_cast<int>(kind)];
}

// "If block of line 3"
template <typename Block>
std::string Described(const Block& block) {
    return std::string(Words(block.kind).name) + " of line " + std::to_string(block.line);
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

constexpr std::size_t none = static_cast<std::size_t>(-1);

// The place of the innermost block of the kind in the open routine.
std::size_t FindBlock(const State& state, BlockKind kind) {
    for (std::size_t at = state.blocks.size(); at-- > state.firstBlock;)
        if (state.blocks[at].kind == kind && state.blocks[at].routineLine == RoutineLine(state)) return at;
    return none;
}

void Refuse(State& state, const std::string& message) {
    if (!state.closerMessage.empty()) return;
    state.closerLine = settings.currentLine;
    state.closerMessage = message;
}

// "do {" and "} while (...);" belong together; what inline C++ has opened is not known.
bool CanClose(BlockKind closer, BlockKind braces) {
    return braces == BlockKind::Inline || (closer == BlockKind::Repeat) == (braces == BlockKind::Repeat);
}

void WarnOfCrossing(const std::string& closer, const OpenBlock& meant, const OpenBraces& braces) {
    if (lenient) return;
    Warn(meant.kind == BlockKind::Inline
             ? "'" + closer + "' closes a brace of inline C++"
             : "'" + closer + "' is meant for the " + Described(meant) + ", but ends the " +
                   Described(braces) + ", which is still open");
}

// Whether a run gets behind the braces; `atEnd` when it gets to their end.
bool GetsBehind(const OpenBraces& braces, bool atEnd) {
    switch (braces.kind) {
        case BlockKind::If:
            return braces.elseSeen ? braces.branchLeft || atEnd : braces.entered;
        case BlockKind::Loop:
            return braces.broken || (braces.entered && !braces.endless);
        case BlockKind::Repeat:
            return braces.broken || braces.continued || atEnd;
        case BlockKind::Select:
            return braces.broken || atEnd || (braces.entered && !braces.elseSeen);
        default:
            return true;
    }
}

ClosedBlock Take(State& state, std::size_t at) {
    ClosedBlock closed = {std::move(state.blocks[at]), std::move(state.braces.back())};
    state.reachable = GetsBehind(closed.braces, state.reachable);
    state.blocks.erase(state.blocks.begin() + static_cast<std::ptrdiff_t>(at));
    state.braces.pop_back();
    return closed;
}

}  // namespace

const char* LoopCloser(const std::string& kind) {
    if (kind == "While") return "Wend";
    return kind == "EachSeq" ? "NextSeq" : "Next";
}

OpenBraces& OpenNewBlock(State& state, BlockKind kind, const std::string& variable) {
    if (state.blocks.size() >= deepest)
        ReportFatal("Blocks are nested too deeply. Put the inner ones into a Function");
    state.blocks.push_back({kind, state.currentLine, RoutineLine(state), variable});
    OpenBraces& braces = state.braces.emplace_back();
    braces.kind = kind;
    braces.line = state.currentLine;
    braces.variable = variable;
    braces.entered = state.reachable;
    return braces;
}

void BeginBranch(State& state) {
    OpenBraces& braces = state.braces.back();
    braces.branchLeft = braces.branchLeft || state.reachable;
    state.reachable = braces.entered;
}

void BeginLabel(State& state) { state.reachable = state.braces.back().entered; }

void NoteBreak(State& state) {
    for (std::size_t i = state.braces.size(); state.reachable && i-- > 0;) {
        OpenBraces& braces = state.braces[i];
        braces.broken = braces.broken || braces.kind != BlockKind::If;
        if (braces.kind != BlockKind::If && braces.kind != BlockKind::Inline) break;
    }
    state.reachable = false;
}

void NoteInlineJumps(State& state) {
    state.reachable = true;
    for (OpenBraces& braces : state.braces) braces.broken = braces.entered = true;
}

std::optional<ClosedBlock> CloseBlock(State& state, BlockKind kind, const std::string& closer) {
    std::size_t at = FindBlock(state, kind);
    if (at == none) at = FindBlock(state, BlockKind::Inline);
    const std::string stray = "'" + closer + "' without an open " + Words(kind).name;
    if (state.blocks.size() == state.firstBlock) ReportFatal(stray);
    if (at == none) {
        Refuse(state, stray);
        return std::nullopt;
    }
    const OpenBlock& meant = state.blocks[at];
    const OpenBraces& braces = state.braces.back();
    if (!CanClose(kind, braces.kind)) {
        const OpenBlock& inner = state.blocks.back();
        Refuse(state, "'" + closer + "' closes the " + Described(meant) + " while the " + Described(inner) +
                          " is still open (missing '" + CloserOf(state, inner) + "')");
    } else if (at + 1 != state.blocks.size() || meant.kind != kind) {
        WarnOfCrossing(closer, meant, braces);
    }
    return Take(state, at);
}

void PopScopeOf(const OpenBraces& braces) {
    if (braces.kind != BlockKind::Select) PopBlock();
}

void EmitClosing(State& state, const OpenBraces& braces) {
    if (braces.kind == BlockKind::Select) FinishSelect(state);
    RewriteWalk(state, braces.walk);
    EmitLine(state, "}" + braces.walk.behind);
}

void NoteInlineBraces(State& state, int opened) {
    for (; opened > 0; --opened) {
        PushBlock();
        OpenNewBlock(state, BlockKind::Inline);
    }
    for (; opened < 0; ++opened) {
        const std::size_t at = FindBlock(state, BlockKind::Inline);
        if (at == none) return;
        const OpenBraces braces = Take(state, at).braces;
        PopScopeOf(braces);
        if (braces.kind == BlockKind::Select) FinishSelect(state);
        RewriteWalk(state, braces.walk);
        if (!braces.walk.behind.empty()) EmitLine(state, braces.walk.behind);
    }
}

void ForgetInlineBraces(State& state) {
    while (InnermostIs(state, BlockKind::Inline) && state.blocks.back().kind == BlockKind::Inline)
        Take(state, state.blocks.size() - 1);
}

void CheckClosers(const State& state) {
    if (state.closerMessage.empty()) return;
    settings.currentLine = state.closerLine;
    ReportFatal(state.closerMessage);
}

bool InnermostIs(const State& state, BlockKind kind) {
    return !state.braces.empty() && state.braces.back().kind == kind;
}

bool CanBreak(const State& state) {
    return std::any_of(state.braces.begin(), state.braces.end(),
                       [](const OpenBraces& braces) { return braces.kind != BlockKind::If; });
}

bool CanContinue(const State& state) {
    return std::any_of(state.braces.begin(), state.braces.end(), [](const OpenBraces& braces) {
        return braces.kind != BlockKind::If && braces.kind != BlockKind::Select;
    });
}
