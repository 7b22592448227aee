#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/run.h"
#include "expressions/constants.h"
#include "lexer/holes.h"
#include "lexer/mentions.h"
#include "symbols/symbols.h"
#include "warnings/routine_watch.h"
#include "warnings/table.h"

namespace {

// A Sequence of the open routine: how many items it may get at most, as far as that can be told.
struct Filling {
    std::size_t items = 0;
    bool isKnown = true;
};
struct Getting {
    const Word* sequence;
    Stop::Subject index;
    std::size_t wanted;
};
std::unordered_map<const Word*, Filling> fillings;
std::vector<Getting> gettings;
const PartOfRun partOfRun(fillings, gettings);

bool IsSeqWord(const Word& word) {
    return IsWord(std::string_view(word.text).substr(0, 3), "seq") && FindFunction(word) == nullptr;
}

// Of two that have one name nobody can tell which is meant.
void NoteDeclared(const Word& name) {
    const auto [filling, isNew] = fillings.try_emplace(&name);
    filling->second.isKnown = isNew;
}

void NoteGetting(TokenSpan statement, std::size_t at) {
    const std::vector<TokenSpan> arguments = statement.Inside(at - 1).SplitAt(',');
    if (!IsWord(statement[at - 2], "seqget") || arguments.size() != 2) return;
    const TokenSpan index = arguments[1];
    if (index.size() != 1 || !IsDigit(index[0][0])) return;
    if (const auto value = IntegerOf(ConstantIn(index)))
        gettings.push_back({&statement.At(at), Kept(index), static_cast<std::size_t>(*value)});
}

// A mention of the Sequence. Where nobody sees what becomes of it, neither does its size.
void NoteUse(TokenSpan statement, std::size_t at, Filling& filling) {
    const Keyword word = statement.KeywordAt(0);
    if (at >= 2 && statement.SignAt(at - 1) == '(' && IsSeqWord(statement.At(at - 2)))
        return NoteGetting(statement, at);
    const bool isFirst = at == 1 && statement.SignAt(2) != '\\';
    const bool adds = word == Keyword::SeqAdd || word == Keyword::SeqAddFirst || word == Keyword::SeqInsert;
    if (isFirst && adds && !InLoop())
        ++filling.items;
    else if (!isFirst || adds || word == Keyword::None || !IsSeqWord(statement.At(0)) ||
             word == Keyword::SeqFromArray)
        filling.isKnown = false;
}

}  // namespace

void WatchSequences(TokenSpan statement) {
    if (statement.KeywordAt(0) == Keyword::Local && !InLoop()) {
        for (const TokenSpan part : statement.From(1).SplitAt(','))
            if (part.KeywordAt(2) == Keyword::Sequence && part.size() == 5) NoteDeclared(part.At(0));
        return;
    }
    if (fillings.empty()) return;
    for (std::size_t i = 0; i < statement.size(); ++i) {
        const auto found = fillings.find(&statement.At(i));
        if (found != fillings.end()) NoteUse(statement, i, found->second);
        if (!HasHoles(statement.At(i))) continue;
        for (const Token token : HoleTokens(statement.At(i)))
            if (fillings.count(&*token) != 0) fillings[&*token].isKnown = false;
    }
}

void EndSequences() {
    for (const Getting& getting : gettings) {
        const auto found = fillings.find(getting.sequence);
        if (found != fillings.end() && found->second.isKnown && getting.wanted >= found->second.items)
            WarnOf("beyond-end", getting.index);
    }
    gettings.clear();
    fillings.clear();
}
