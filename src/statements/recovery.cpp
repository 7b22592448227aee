#include "statements/recovery.h"

#include "base/settings.h"
#include "collect/first_pass.h"
#include "expressions/sequence_walks.h"
#include "prelude/output.h"
#include "statements/dispatch.h"
#include "statements/second_pass.h"
#include "statements/with.h"
#include "symbols/foreign_words.h"
#include "symbols/misspelling.h"
#include "symbols/mistakes.h"
#include "symbols/scopes.h"
#include "symbols/uses.h"

namespace {

// How much was open before a statement.
struct OpenWork {
    explicit OpenWork(const State& state)
        : blocks(state.blocks.size()),
          scopes(localDefList.size()),
          scopeBlocks(BlockCount()),
          walks(SequenceWalkCount()),
          cls(currentClass) {}
    std::size_t blocks, scopes, scopeBlocks, walks;
    const ClassInfo* cls;
};

// Takes back what the statement has opened.
void TakeBack(State& state, const OpenWork& before) {
    while (state.blocks.size() > before.blocks) state.blocks.pop_back();
    state.place.inOneLineIf = false;
    state.routine.reachable = true;
    while (localDefList.size() > before.scopes) PopRoutineScope();
    for (std::size_t count = BlockCount(); count > before.scopeBlocks; --count) PopBlock();
    DropSequenceWalks(before.walks);
    CollectNeedsInto(nullptr);
    currentClass = before.cls;
}

bool IsRoutineCloser(Keyword keyword) { return Has(BlockOf(keyword), trait::routine); }

bool IsClassCloser(Keyword keyword) { return Has(BlockOf(keyword), trait::classes); }

// Closes the open routine, whatever is open in it.
void CloseRoutineAnyway(State& state) {
    OpenWork nothing(state);
    nothing.blocks = nothing.walks = 0;
    TakeBack(state, nothing);
    state.withs.clear();
    state.routine.hasReturn = true;
    const Tokens closer = {InMethod(state) ? "EndMethod" : "EndFunction"};
    DispatchStatement(state, closer);
}

// What stands for a wrong statement; empty when nothing has to.
Tokens Substitute(TokenSpan statement) {
    switch (statement.KeywordAt(0)) {
        case Keyword::If:
            return {"If", "True"};
        case Keyword::While:
        case Keyword::For:
        case Keyword::EachSeq:
            return {"While", "True"};
        case Keyword::Until:
            return {"Until", "True"};
        case Keyword::Select:
            return {"Select", "1"};
        case Keyword::Repeat:
        case Keyword::EndWith:
            return {statement.At(0)};
        default:
            return Has(statement.KeywordAt(0), trait::closesBlock) ? Tokens{statement.At(0)} : Tokens();
    }
}

// An If with something behind its Then ends on its line.
bool EndsOnItsLine(TokenSpan statement) {
    const std::size_t then = statement.Find(Keyword::Then);
    return statement.KeywordAt(0) == Keyword::If && then != noToken && !StaysOpen(statement, then);
}

// Opens or closes what the statement would have. Nothing is known of the values that it tests.
void Replace(State& state, TokenSpan statement) {
    const Tokens substitute = Substitute(statement);
    if (substitute.empty() || EndsOnItsLine(statement)) return;
    DispatchStatement(state, substitute);
    if (Has(statement.KeywordAt(0), trait::loop)) state.blocks.back().braces.broken = true;  // it may end
    if (statement.KeywordAt(0) == Keyword::Select) state.blocks.back().braces.select->subject = ValueType();
    if (statement.KeywordAt(0) == Keyword::For) state.blocks.back().opener.word = "For";
    if (statement.KeywordAt(0) == Keyword::EachSeq) state.blocks.back().opener.word = "EachSeq";
}

Passing PassingBehind(const State& state, Keyword keyword) {
    switch (keyword) {
        case Keyword::Function:
        case Keyword::Method:
            return InRoutine(state) ? Passing::File : Passing::Routine;
        case Keyword::Type:
        case Keyword::Element:
            return InFunction(state) || state.inType ? Passing::File : Passing::Class;
        case Keyword::PreCalc:
            return Passing::PreCalc;
        default:
            return InRoutine(state) ? Passing::Nothing : Passing::Stray;
    }
}

void Recover(State& state, const OpenWork& before, TokenSpan statement) {
    const Keyword keyword = statement.KeywordAt(0);
    const bool closed = state.blocks.size() < before.blocks;
    TakeBack(state, before);
    if (IsRoutineCloser(keyword) && (InRoutine(state))) return CloseRoutineAnyway(state);
    state.routine.hasReturn = state.routine.hasReturn || keyword == Keyword::Return;
    if (keyword == Keyword::EndPreCalc) return;
    state.place.passing = PassingBehind(state, keyword);
    if (keyword == Keyword::With) {
        OpenUnknownWith(state);
        Doubt(WordOf("its"));
    }
    if (!closed && (InRoutine(state))) Replace(state, statement);
}

// Whether the statement is passed over.
bool PassesOver(State& state, Keyword keyword) {
    const Passing passing = state.place.passing;
    const bool ends = (passing == Passing::Routine && IsRoutineCloser(keyword)) ||
                      (passing == Passing::Class && IsClassCloser(keyword)) ||
                      (passing == Passing::PreCalc && keyword == Keyword::EndPreCalc);
    const bool goesOn =
        passing == Passing::Stray && (Has(keyword, trait::collected) || IsClassCloser(keyword));
    if (passing == Passing::Stray && IsRoutineCloser(keyword)) {
        state.place.passing = Passing::Nothing;
        return true;
    }
    if (ends || goesOn) state.place.passing = Passing::Nothing;
    return passing != Passing::Nothing && !goesOn;
}

// What is said of results depends on a head that may be wrong, and whether a routine is still open on all before.
bool FollowsFromEarlier(const State& state, Keyword keyword) {
    if (state.mistaken && PassingBehind(state, keyword) == Passing::File) return true;
    const bool result = keyword == Keyword::Return || IsRoutineCloser(keyword);
    if (IsRoutineCloser(keyword) && state.mistaken && !state.withs.empty()) return true;
    return result && state.routine.declared != nullptr && IsDoubtful(WordOf(state.routine.declared->name));
}

// Whether it divides or ends a block that was begun as in other languages.
bool BelongsToForeignBlock(const State& state, TokenSpan statement) {
    if (!state.routine.holdsForeignBlock) return false;
    const Keyword keyword = statement.KeywordAt(0);
    if (keyword == Keyword::None) return ClosesElsewhere(statement[0]);
    return Has(keyword, trait::closesBlock) || keyword == Keyword::Case || keyword == Keyword::Default;
}

// Whether the wrong statement could open or close a block.
bool ConcernsBlocks(TokenSpan statement) {
    const Keyword keyword = statement.KeywordAt(0);
    switch (keyword) {
        case Keyword::None:
            return statement.size() == 1 && MayConcernBlocks(statement[0]);
        case Keyword::Print:
        case Keyword::Input:
        case Keyword::Local:
        case Keyword::Return:
            return false;
        default:
            return true;
    }
}

}  // namespace

void TranslateOrRecover(State& state, TokenSpan statement, StatementHandler translate) {
    const Keyword keyword = statement.KeywordAt(0);
    if (!state.inPreCalc && PassesOver(state, keyword)) return;
    const OpenWork before(state);
    const StatementUses uses(statement);
    try {
        translate(state, statement);
        return;
    } catch (const Stop& stop) {
        // What is wrong for a doubtful name's sake opens and closes what is written.
        const bool follows = FollowsFromEarlier(state, keyword) || BelongsToForeignBlock(state, statement);
        const bool only = !follows && !KeepMistake(stop, statement);
        if (keyword == Keyword::None && OpensElsewhere(statement[0])) state.routine.holdsForeignBlock = true;
        state.mistaken = true;
        state.blocksAreDoubtful = state.blocksAreDoubtful || (!only && ConcernsBlocks(statement));
    }
    try {
        Recover(state, before, statement);
    } catch (const Stop&) {
        TakeBack(state, before);
        state.place.passing = InRoutine(state) ? Passing::Nothing : Passing::File;
    }
}
