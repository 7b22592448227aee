// For e EachIn s walks over copies of the items, unless they are objects or the records of an array.
#include <algorithm>
#include <vector>

#include "base/run.h"
#include "base/settings.h"
#include "lexer/mentions.h"
#include "symbols/scopes.h"
#include "warnings/routine_watch.h"
#include "warnings/slips.h"
#include "warnings/table.h"

namespace {

struct Change {
    Stop::Subject about;
    int line;
};

struct Loop {
    const Word* copy = nullptr;  // its variable, while all that becomes of it is known
    ValueType item;
    std::vector<Change> changes;  // that nothing has used yet
};
std::vector<Loop> loops;  // of the open routine, the innermost last
const PartOfRun partOfRun(loops);

// For [Each] name [: type] EachIn collection
Loop LoopOf(TokenSpan statement) {
    Loop loop;
    const bool isEach = statement.KeywordAt(1) == Keyword::Each;
    const std::size_t word = statement.Find(isEach ? Keyword::In : Keyword::EachIn);
    if (statement.KeywordAt(0) != Keyword::For || word == noToken) return loop;
    const ValueType walked = TypeOfPlace(statement.From(word + 1));
    loop.item = walked.IsKnown() && !walked.IsSingle() ? walked.Item() : ValueType();
    const bool isCopy = loop.item.IsNumber() || loop.item.Is(Base::String) ||
                        (loop.item.Is(Base::Element) && walked.sequence);
    if (isCopy) loop.copy = &statement.At(isEach ? 2 : 1);
    return loop;
}

// Whether the Fields that lead to the last one are values as well, none of them a reference to something else.
bool IsPartOfCopy(const Loop& loop, TokenSpan place) {
    ValueType type = loop.item;
    for (std::size_t i = 1; i < place.size(); i += 2) {
        const bool isField = place.SignAt(i) == '\\' && type.Is(Base::Element) && type.cls != nullptr;
        const Variable* const field = isField ? FindField(*type.cls, place.At(i + 1)) : nullptr;
        if (field == nullptr) return false;
        type = field->type;
    }
    return true;
}

bool Calls(TokenSpan value) {
    return std::any_of(value.first, value.last, [](Token token) { return token->sign == '('; });
}

// e\x = value
bool IsChange(const Loop& loop, TokenSpan statement) {
    const std::size_t equals = statement.FindEquals();
    return &statement.At(0) == loop.copy && equals != noToken &&
           IsPartOfCopy(loop, statement.Slice(0, equals));
}

void NoteMention(Loop& loop, TokenSpan statement, bool isInnermost) {
    const TokenSpan value = statement.From(statement.FindEquals() + 1);
    const bool isChange = isInnermost && IsChange(loop, statement);
    if (!isChange || (Calls(value) && Mentions(value, *loop.copy))) loop.changes.clear();
    if (isChange)
        loop.changes.push_back({Kept(statement.Slice(0, statement.FindEquals())), settings.currentLine});
}

// What declares another variable of the name, or stands in another file, may do anything.
bool HidesCopy(Keyword word) {
    return word == Keyword::Local || word == Keyword::For || word == Keyword::EachSeq;
}

void CloseLoop() {
    const int line = settings.currentLine;
    for (const Change& change : loops.back().changes) {
        settings.currentLine = change.line;
        WarnOf("lost-change", change.about);
    }
    settings.currentLine = line;
    loops.pop_back();
}

}  // namespace

void WatchCopies(TokenSpan statement) {
    const Keyword word = statement.KeywordAt(0);
    if (Has(BlockOf(word), trait::loop) && !loops.empty()) CloseLoop();
    for (Loop& loop : loops) {
        const bool isMentioned = loop.copy != nullptr && Mentions(statement, *loop.copy);
        if (isMentioned) NoteMention(loop, statement, &loop == &loops.back());
        if (word == Keyword::Include || (isMentioned && HidesCopy(word))) loop = {};
    }
    if (Has(word, trait::loop)) loops.push_back(LoopOf(statement));
}

void EndCopies() { loops.clear(); }
