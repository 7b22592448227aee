#include "symbols/mistakes.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "base/edit_distance.h"
#include "base/journal.h"
#include "base/run.h"
#include "base/settings.h"
#include "lexer/mentions.h"
#include "lexer/token_places.h"
#include "symbols/foreign_signs.h"
#include "symbols/foreign_words.h"
#include "symbols/hole_fixes.h"
#include "symbols/identifiers.h"
#include "symbols/missing_closers.h"
#include "symbols/misspelling.h"
#include "symbols/scopes.h"
#include "symbols/symbols.h"

namespace {

std::vector<korvel::Diagnostic> kept;
std::unordered_set<const Word*> doubtful;           // everywhere
std::unordered_set<const Word*> doubtfulInRoutine;  // until it ends
std::vector<Elsewhere> unreadFiles;
korvel::Range openEnd;  // of the last mistake's line, if it ends in an operator or comma
const PartOfRun partOfRun(kept, doubtful, doubtfulInRoutine, unreadFiles, openEnd);

bool IsDeclared(const std::string& name) {
    return FindFunction(name) != nullptr || FindUserlibFunction(name) != nullptr || IsClass(name) ||
           symbols.globals.Has(name) || symbols.constants.Has(name) || symbols.fieldOwners.Has(name) ||
           FindLocal(name) != nullptr;
}

bool IsNameOfProgram(const Word& word) {
    const bool isName =
        word.sign == '\0' && word.text[0] != '"' && IsName(word.text) && !IsBasicType(word.text);
    return isName && (word.keyword == Keyword::None || IsDeclared(word.text));
}

void DoubtIfName(const Word& word) {
    if (IsNameOfProgram(word)) Doubt(word);
}

// The names that a wrong statement would have declared: those behind Local, say, and behind each comma.
void DoubtDeclared(TokenSpan statement) {
    for (std::size_t i = 0; i < statement.size(); ++i) {
        const bool isForeign = i == 0 && DeclaresElsewhere(statement[0]);
        if (!isForeign && !Has(statement.KeywordAt(i), trait::names)) continue;
        for (const TokenSpan declared : statement.From(i + 1).SplitAt(',')) DoubtIfName(declared.At(0));
    }
}

// A word that is not known is told once.
void DoubtUnknown(const Stop& stop) {
    if (!stop.ofUnknown && stop.sought == Sought::Nothing) return;
    for (const Token token : stop.subject.tokens) DoubtIfName(*token);
}

bool MentionsDoubtful(TokenSpan statement) {
    const Tokens mentioned = MentionedTokens(statement);
    return std::any_of(mentioned.begin(), mentioned.end(), [](Token token) { return IsDoubtful(*token); });
}

// What people write who take the line before for one that goes on in this one.
bool GoesOn(const korvel::Range& mistake, TokenSpan statement) {
    const Keyword word = statement.KeywordAt(0);
    return openEnd.line > 0 && mistake.line == openEnd.line + 1 && mistake.file == openEnd.file &&
           (word == Keyword::None || Has(word, trait::operation) || word == Keyword::Then);
}

// Where nothing nearer is meant it is about the statement, unless that only made an earlier one count.
bool FindPlace(const korvel::Diagnostic& mistake, const Stop::Subject& subject, TokenSpan statement,
               SourcePlace& place) {
    if (FindPlace(subject, statement, place)) return place.file == mistake.file;
    return FindPlace(statement, place) && place.file == mistake.file && place.where.line == mistake.line;
}

void PutPlace(korvel::Range& range, const TokenPlace& place) {
    range.line = place.line;
    range.firstColumn = place.first;
    range.lastColumn = place.last;
}

// Mistakes that are met elsewhere than in their statement have their line alone, and the words that are meant.
void Locate(korvel::Diagnostic& mistake, TokenSpan words) {
    TokenPlace place;
    if (FindOnLine(mistake.file, mistake.line, words, place)) PutPlace(mistake, place);
}

void LocateLast(korvel::Diagnostic& mistake, const Stop& stop, TokenSpan statement) {
    SourcePlace place;
    if (stop.isElsewhere ? FindTrouble(mistake, place.where)
                         : FindPlace(mistake, stop.subject, statement, place))
        PutPlace(mistake, place.where);
    else
        Locate(mistake, stop.subject.tokens);
}

// From the literal to the part of it that is meant.
void Narrow(korvel::Diagnostic& mistake, const Stop::Subject& subject) {
    if (subject.to == 0 || mistake.firstColumn == 0) return;
    mistake.lastColumn = mistake.firstColumn + static_cast<int>(subject.to) - 1;
    mistake.firstColumn += static_cast<int>(subject.from);
}

// What may have been meant, and what to write then.
void Advise(korvel::Diagnostic& mistake, const Stop& stop) {
    if (stop.sought == Sought::Nothing || stop.subject.tokens.size() != 1) return;
    const Advice advice = AdviceFor(stop.subject.tokens[0], stop.sought, stop.owner);
    const char* const separator = mistake.hint.empty() || advice.hint.empty() ? "" : "\n";
    mistake.hint = advice.hint + separator + mistake.hint;
    if (advice.replacement.empty() || mistake.firstColumn == 0) return;
    korvel::Fix& fix = mistake.fixes.emplace_back();
    static_cast<korvel::Range&>(fix) = mistake;
    fix.replacement = advice.replacement;
}

void AddRelated(korvel::Diagnostic& mistake, const Elsewhere& other) {
    TokenPlace place;
    if (other.line == 0) return;
    korvel::Related related;
    related.file = other.file;
    related.line = other.line;
    related.message = other.message;
    const bool isPlaced = other.name.empty() ? FindOnLine(other.file, other.line, {}, place)
                                             : FindName(other.file, other.line, other.name, place);
    if (isPlaced) PutPlace(related, place);
    const bool isSame = related.file == mistake.file && related.line == mistake.line &&
                        related.firstColumn == mistake.firstColumn;
    if (!isSame) mistake.related.push_back(related);
    FixOpenBlock(mistake, other.line, other.closer);
}

// Words that the program knows, or spells like one that it knows but for capital letters or a slip, are its own, as are names that
// it wants and C++ has.
bool MayBeForeign(const korvel::Diagnostic& mistake, const Stop& stop) {
    const TokenSpan meant(stop.subject.tokens);
    if (meant.empty()) return true;
    const std::string meantName = mistake.fixes.empty() ? "" : mistake.fixes[0].replacement;
    const std::size_t most = !meantName.empty() && IsDeclared(meantName) ? 1 : 0;
    const bool isSpelt = EditDistance(Lower(meantName), Lower(meant[0]), most) <= most;
    const bool isTaken = stop.sought == Sought::Nothing && !mistake.hint.empty() && IsCppWord(meant[0]);
    return !isSpelt && !isTaken && !IsDeclared(meant[0]);
}

void Explain(korvel::Diagnostic* mistakes, const Stop& stop, TokenSpan statement) {
    const std::size_t blocks = stop.blocks.size();
    for (std::size_t i = 0; i < blocks; ++i) {
        Locate(mistakes[i], Tokens{stop.blocks[i].word});
        FixOpenBlock(mistakes[i], mistakes[i].line, stop.blocks[i].closer);
    }
    if (blocks == stop.mistakes.size()) return;
    LocateLast(mistakes[blocks], stop, statement);
    Advise(mistakes[blocks], stop);
    for (const Elsewhere& other : stop.others) AddRelated(mistakes[blocks], other);
    if (stop.sought != Sought::File && (stop.ofUnknown || stop.sought != Sought::Nothing))
        for (const Elsewhere& unread : unreadFiles) AddRelated(mistakes[blocks], unread);
    const bool isOfHole =
        stop.subject.to > 0 && FixHole(mistakes[blocks], *stop.subject.tokens[0], stop.subject.from);
    if (!isOfHole && MayBeForeign(mistakes[blocks], stop)) HintAtForeignWords(mistakes[blocks]);
    if (stop.onErrorStream) FixOpenSign(mistakes[blocks]);
    Narrow(mistakes[blocks], stop.subject);
}

}  // namespace

bool KeepMistake(const Stop& stop, TokenSpan statement) {
    const bool isUnread = stop.ofUnknown && !symbols.complete;
    const bool goesOn = GoesOn(stop.mistakes.back(), statement);
    const bool follows = !kept.empty() && (goesOn || MentionsDoubtful(statement));
    if (!isUnread && !follows) {
        const std::size_t before = kept.size();
        kept.insert(kept.end(), stop.mistakes.begin(), stop.mistakes.end());
        if (settings.columns) Explain(&kept[before], stop, statement);
        NoteMistake(stop);
    }
    openEnd = EndsOpen(statement) ? static_cast<korvel::Range>(stop.mistakes.back()) : korvel::Range();
    DoubtUnknown(stop);
    DoubtDeclared(statement);
    return !follows;
}

void NoteUnreadFile(const std::string& name) {
    unreadFiles.push_back({settings.currentFile, settings.currentLine, name,
                           "this file is not read: its name stands without quotes"});
}

void Doubt(const Word& name) { (localDefList.size() > 1 ? doubtfulInRoutine : doubtful).insert(&name); }

bool IsDoubtful(const Word& name) {
    return doubtful.count(&name) != 0 || doubtfulInRoutine.count(&name) != 0;
}

void EndDoubtsOfRoutine() { doubtfulInRoutine.clear(); }

bool AnyMistakes() { return !kept.empty(); }
std::size_t MistakesSoFar() { return kept.size(); }

std::vector<korvel::Diagnostic> KeptMistakes() {
    std::unordered_map<std::string, std::size_t> numbers;
    for (const std::string& file : symbols.sourceFiles) numbers.emplace(file, numbers.size());
    const auto placeOf = [&numbers](const korvel::Diagnostic& mistake) {
        const auto number = numbers.find(mistake.file);
        return std::make_tuple(number == numbers.end() ? numbers.size() : number->second, mistake.line,
                               std::string_view(mistake.message));
    };
    std::vector<korvel::Diagnostic> mistakes = kept;
    std::stable_sort(mistakes.begin(), mistakes.end(),
                     [&](const auto& a, const auto& b) { return placeOf(a) < placeOf(b); });
    const auto same = [&](const auto& a, const auto& b) { return placeOf(a) == placeOf(b); };
    mistakes.erase(std::unique(mistakes.begin(), mistakes.end(), same), mistakes.end());
    return mistakes;
}
