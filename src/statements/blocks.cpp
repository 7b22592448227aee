#include "statements/blocks.h"

#include <algorithm>

#include "base/report.h"
#include "base/settings.h"
#include "expressions/expression.h"
#include "statements/for_loops.h"
#include "statements/selects.h"
#include "statements/state.h"
#include "symbols/scopes.h"

namespace {

constexpr std::size_t deepest = 1000;  // open blocks

struct KindWords {
    const char* name;  // "If block"
    const char* closer;
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
template <typename Half>
std::string Described(const Half& block) {
    return std::string(Words(block.kind).name) + " of line " + std::to_string(block.line);
}

constexpr std::size_t none = static_cast<std::size_t>(-1);

// The place of the innermost block of the kind in the open routine.
std::size_t FindBlock(const State& state, BlockKind kind) {
    for (std::size_t at = state.blocks.size(); at-- > state.place.firstBlock;) {
        const Opener& opener = state.blocks[at].opener;
        if (opener.kind == kind && opener.routineLine == state.routine.line) return at;
    }
    return none;
}

void Refuse(State& state, const std::string& closer, const std::string& message,
            const Opener* open = nullptr) {
    if (!state.place.closerMessage.empty()) return;
    state.place.closerWord = closer;
    if (open != nullptr)
        state.place.closerOther = {settings.currentFile, open->line, {}, openedHere, CloserOf(*open)};
    state.place.closerLine = settings.currentLine;
    state.place.closerMessage = message;
}

// "do {" and "} while (...);" belong together; what inline C++ has opened is not known.
bool CanClose(BlockKind closer, BlockKind braces) {
    return braces == BlockKind::Inline || (closer == BlockKind::Repeat) == (braces == BlockKind::Repeat);
}

void WarnOfCrossing(const std::string& closer, const Opener& meant, const Braces& braces) {
    Warn("crossing", meant.kind == BlockKind::Inline
                         ? "'" + closer + "' closes a brace of inline C++"
                         : "'" + closer + "' is meant for the " + Described(meant) + ", but ends the " +
                               Described(braces) + ", which is still open");
}

// Whether a run gets behind the braces; `atEnd` when it gets to their end.
bool GetsBehind(const Braces& braces, bool atEnd) {
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

// Blocks within the one that its word has closed keep their openers, and get the braces around them.
Block Take(State& state, std::size_t at) {
    for (std::size_t i = at + 1; i < state.blocks.size(); ++i)
        std::swap(state.blocks[i - 1].opener, state.blocks[i].opener);
    Block closed = std::move(state.blocks.back());
    state.blocks.pop_back();
    state.routine.reachable = GetsBehind(closed.braces, state.routine.reachable);
    return closed;
}

bool IsLoop(BlockKind kind) { return kind == BlockKind::Loop || kind == BlockKind::Repeat; }

}  // namespace

Elsewhere ClosedIf(const State& state) {
    const bool isInRoutine = state.place.closedIf > state.routine.line;
    return {settings.currentFile, isInRoutine ? state.place.closedIf : 0, {}, "ends with its line"};
}

const char* CloserOf(const Opener& opener) {
    if (std::string_view(opener.word) == "While") return "Wend";
    return std::string_view(opener.word) == "EachSeq" ? "NextSeq" : Words(opener.kind).closer;
}

Braces& OpenNewBlock(State& state, BlockKind kind, const char* word, const std::string& variable) {
    if (state.blocks.size() >= deepest)
        ReportFatal("Blocks are nested too deeply. Put the inner ones into a Function");
    Block& block = state.blocks.emplace_back();
    block.opener = {kind, word, state.place.line, state.routine.line, variable};
    Braces& braces = block.braces;
    braces.kind = kind;
    braces.line = state.place.line;
    braces.variable = variable;
    braces.entered = state.routine.reachable;
    return braces;
}

void BeginBranch(State& state) {
    Braces& braces = state.blocks.back().braces;
    braces.branchLeft = braces.branchLeft || state.routine.reachable;
    state.routine.reachable = braces.entered;
}

void BeginLabel(State& state) { state.routine.reachable = state.blocks.back().braces.entered; }

void NoteBreak(State& state) {
    for (std::size_t i = state.blocks.size(); state.routine.reachable && i-- > 0;) {
        Braces& braces = state.blocks[i].braces;
        braces.broken = braces.broken || braces.kind != BlockKind::If;
        if (braces.kind != BlockKind::If && braces.kind != BlockKind::Inline) break;
    }
    state.routine.reachable = false;
}

void NoteContinue(State& state) {
    const auto loop = std::find_if(state.blocks.rbegin(), state.blocks.rend(),
                                   [](const Block& block) { return IsLoop(block.braces.kind); });
    if (loop != state.blocks.rend()) loop->braces.continued = true;
    state.routine.reachable = false;
}

void NoteInlineJumps(State& state) {
    state.routine.reachable = true;
    for (Block& block : state.blocks) block.braces.broken = block.braces.entered = true;
}

std::optional<Block> CloseBlock(State& state, BlockKind kind, const std::string& closer) {
    std::size_t at = FindBlock(state, kind);
    if (at == none) at = FindBlock(state, BlockKind::Inline);
    if (at == none || state.blocks.size() == state.place.firstBlock) {
        const std::string stray = "'" + closer + "' without an open " + Words(kind).name;
        const Elsewhere other = kind == BlockKind::If ? ClosedIf(state) : Elsewhere();
        if (state.blocks.size() == state.place.firstBlock)
            ReportFatal(other.line > 0 ? stray + wayToOpenIf : stray, {}, other);
        Refuse(state, closer, stray);
        return std::nullopt;
    }
    const Opener& meant = state.blocks[at].opener;
    const Braces& braces = state.blocks.back().braces;
    if (!CanClose(kind, braces.kind)) {
        const Opener& inner = state.blocks.back().opener;
        Refuse(state, closer,
               "'" + closer + "' closes the " + Described(meant) + " while the " + Described(inner) +
                   " is still open (missing '" + CloserOf(inner) + "')",
               &inner);
    } else if (at + 1 != state.blocks.size() || meant.kind != kind) {
        WarnOfCrossing(closer, meant, braces);
    }
    return Take(state, at);
}

void PopScopeOf(const Braces& braces) {
    if (braces.kind != BlockKind::Select) PopBlock();
}

// What stands before the closing brace.
static void Finish(State& state, Braces& braces) {
    if (braces.select != nullptr) FinishSelect(state, *braces.select);
    if (braces.walk != nullptr) SettleWalk(state, braces);
}

void EmitClosing(State& state, Braces& braces) {
    Finish(state, braces);
    EmitLine(state, "}", braces.behind);
}

void NoteInlineBraces(State& state, int opened) {
    for (; opened > 0; --opened) {
        PushBlock();
        OpenNewBlock(state, BlockKind::Inline);
    }
    for (; opened < 0; ++opened) {
        const std::size_t at = FindBlock(state, BlockKind::Inline);
        if (at == none) return;
        Braces braces = Take(state, at).braces;
        PopScopeOf(braces);
        Finish(state, braces);
        if (!braces.behind.text.empty() || !braces.behind.passages.empty()) EmitLine(state, braces.behind);
    }
}

void LeaveBlocks(State& state) {
    while (InnermostIs(state, BlockKind::Inline) && state.blocks.back().opener.kind == BlockKind::Inline)
        Take(state, state.blocks.size() - 1);
    for (Block& block : state.blocks) {
        block.braces.walk.reset();
        if (block.braces.select != nullptr) block.braces.select->declares = false;
    }
}

void CheckClosers(const State& state) {
    if (state.place.closerMessage.empty()) return;
    settings.currentLine = state.place.closerLine;
    ReportFatal(state.place.closerMessage, Tokens{state.place.closerWord}, state.place.closerOther);
}

namespace {

template <typename Test>
bool AnyBraces(const State& state, Test test) {
    return std::any_of(state.blocks.begin(), state.blocks.end(),
                       [test](const Block& block) { return test(block.braces.kind); });
}

template <typename Test>
bool AnyOpener(const State& state, Test test) {
    return std::any_of(state.blocks.begin(), state.blocks.end(),
                       [test](const Block& block) { return test(block.opener.kind); });
}

}  // namespace

bool InnermostIs(const State& state, BlockKind kind) {
    return !state.blocks.empty() && state.blocks.back().braces.kind == kind;
}

bool IsOpen(const State& state, BlockKind kind) {
    return AnyBraces(state, [kind](BlockKind open) { return open == kind; });
}

bool CanBreak(const State& state) {
    const auto leaves = [](BlockKind kind) { return IsLoop(kind) || kind == BlockKind::Select; };
    return AnyOpener(state, leaves) && AnyBraces(state, [](BlockKind kind) { return kind != BlockKind::If; });
}

bool CanContinue(const State& state) {
    const auto goesOn = [](BlockKind kind) { return IsLoop(kind) || kind == BlockKind::Inline; };
    return AnyOpener(state, IsLoop) && AnyBraces(state, goesOn);
}
