#include <algorithm>
#include <unordered_set>
#include <vector>

#include "base/run.h"
#include "lexer/holes.h"
#include "symbols/scopes.h"
#include "warnings/routine_watch.h"
#include "warnings/table.h"

namespace {

using Words = std::unordered_set<const Word*>;

struct Loop {
    Stop::Subject condition;  // of While and Until
    Words variables;          // in it
    Words changed;            // in the body
    bool mayEnd = false;      // by another way
    bool counts = false;      // what its body does, for itself or for one around it
};
std::vector<Loop> loops;  // of the open routine, the innermost last
const PartOfRun partOfRun(loops);

// The variables of a condition made of plain Locals, numbers and operators; none for any other.
Words VariablesOf(TokenSpan condition) {
    Words variables;
    for (const Token* token = condition.first; token != condition.last; ++token) {
        const Word& word = **token;
        if (word.sign == '\\' || word.sign == '[' || word.sign == '.' || HasHoles(word)) return {};
        if (word.sign != '\0' || word.keyword != Keyword::None || IsQuoted(word.text) ||
            IsDigit(word.text[0]))
            continue;
        const Variable* local = FindLocal(word);
        if (local == nullptr && symbols.constants.Has(word.text)) continue;
        if (local == nullptr || !local->type.IsSingle() || local->type.cls != nullptr) return {};
        variables.insert(&word);
    }
    return variables;
}

// A call may End the program.
bool Calls(TokenSpan statement) {
    for (std::size_t i = 0; i < statement.size(); ++i)
        if (statement.SignAt(i) == '\\' || FindCallable(statement.At(i)) != nullptr) return true;
    return false;
}

void NoteChanges(TokenSpan statement) {
    if (loops.empty() || !loops.back().counts) return;
    Loop& loop = loops.back();
    switch (statement.KeywordAt(0)) {
        case Keyword::None:
            loop.changed.insert(&statement.At(0));
            break;
        case Keyword::Input:
        case Keyword::For:
        case Keyword::EachSeq:
        case Keyword::Include:
            for (const Token* token = statement.first; token != statement.last; ++token)
                loop.changed.insert(&**token);
            break;
        case Keyword::Return:
        case Keyword::End:
        case Keyword::Exit:
            loop.mayEnd = true;
            break;
        default:
            break;
    }
    loop.mayEnd = loop.mayEnd || Calls(statement);
}

void SetCondition(Loop& loop, TokenSpan condition) {
    loop.condition = Kept(condition);
    loop.variables = VariablesOf(condition);
}

// Of a Repeat nobody knows yet what it will end by; a For goes on by itself.
void OpenLoop(TokenSpan statement) {
    const Keyword word = statement.KeywordAt(0);
    const bool isInner = !loops.empty() && loops.back().counts;
    Loop& loop = loops.emplace_back();
    if (word == Keyword::While) SetCondition(loop, statement.From(1));
    loop.counts = isInner || word == Keyword::Repeat || !loop.variables.empty();
    NoteChanges(statement);
}

void CloseLoop() {
    const Loop loop = loops.back();
    loops.pop_back();
    const bool turns = std::any_of(loop.variables.begin(), loop.variables.end(),
                                   [&](const Word* name) { return loop.changed.count(name) != 0; });
    if (!loop.variables.empty() && !turns && !loop.mayEnd && !symbols.inlineCpp)
        WarnOf("loop-forever", loop.condition);
    if (loops.empty()) return;
    Loop& outer = loops.back();
    outer.changed.insert(loop.changed.begin(), loop.changed.end());
    outer.mayEnd = outer.mayEnd || loop.mayEnd;
}

}  // namespace

void WatchLoops(TokenSpan statement) {
    const Keyword word = statement.KeywordAt(0);
    NoteChanges(statement);
    if (Has(word, trait::loop)) {
        OpenLoop(statement);
    } else if (Has(BlockOf(word), trait::loop) && !loops.empty()) {
        if (word == Keyword::Until && loops.back().counts) SetCondition(loops.back(), statement.From(1));
        CloseLoop();
    }
}

bool InLoop() { return !loops.empty(); }

void EndLoops() { loops.clear(); }
