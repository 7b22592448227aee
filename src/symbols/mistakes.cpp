#include "symbols/mistakes.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "base/journal.h"
#include "base/run.h"
#include "base/settings.h"
#include "lexer/mentions.h"
#include "lexer/token_places.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"
#include "symbols/symbols.h"

namespace {

std::vector<korvel::Diagnostic> kept;
std::unordered_set<const Word*> doubtful;           // everywhere
std::unordered_set<const Word*> doubtfulInRoutine;  // until it ends
const PartOfRun partOfRun(kept, doubtful, doubtfulInRoutine);

bool IsDeclared(const std::string& name) {
    return FindFunction(name) != nullptr || FindUserlibFunction(name) != nullptr || IsClass(name) ||
           symbols.globals.count(name) != 0 || symbols.constants.count(name) != 0 ||
           symbols.fieldOwners.count(name) != 0 || FindLocal(name) != nullptr;
}

bool IsNameOfProgram(const Word& word) {
    const bool isName =
        word.sign == '\0' && word.text[0] != '"' && IsName(word.text) && !IsBasicType(word.text);
    return isName && (word.keyword == Keyword::None || IsDeclared(word.text));
}

// Names that nobody declares, and those that a wrong declaration would have declared.
void DoubtNamesOf(TokenSpan statement) {
    const bool declares = Has(statement.KeywordAt(0), trait::names);
    const Tokens mentioned = MentionedTokens(statement.From(declares ? 1 : 0));
    for (const Token token : mentioned)
        if (IsNameOfProgram(*token) && (!IsDeclared(token->text) || (declares && FindLocal(token->text))))
            Doubt(*token);
    if (declares && IsNameOfProgram(statement.At(1))) Doubt(statement.At(1));
}

bool MentionsDoubtful(TokenSpan statement) {
    const Tokens mentioned = MentionedTokens(statement);
    return std::any_of(mentioned.begin(), mentioned.end(), [](Token token) { return IsDoubtful(*token); });
}

// Where nothing nearer is meant it is about the statement, unless that only made an earlier one count.
bool FindPlace(const korvel::Diagnostic& mistake, const Stop::Subject& subject, TokenSpan statement,
               SourcePlace& place) {
    if (FindPlace(subject, statement, place)) return place.file == mistake.file;
    return FindPlace(statement, place) && place.file == mistake.file && place.where.line == mistake.line;
}

void Locate(korvel::Diagnostic& mistake, const Stop::Subject& subject, TokenSpan statement) {
    SourcePlace place;
    if (!FindPlace(mistake, subject, statement, place)) return;
    mistake.line = place.where.line;
    mistake.firstColumn = place.where.first;
    mistake.lastColumn = place.where.last;
}

}  // namespace

void KeepMistake(const Stop& stop, TokenSpan statement) {
    const bool isUnread = stop.ofUnknown && !symbols.complete;
    if (!isUnread && (kept.empty() || !MentionsDoubtful(statement))) {
        kept.insert(kept.end(), stop.mistakes.begin(), stop.mistakes.end());
        if (settings.columns && !stop.isElsewhere) Locate(kept.back(), stop.subject, statement);
        NoteMistake(stop);
    }
    DoubtNamesOf(statement);
}

void Doubt(const Word& name) { (localDefList.size() > 1 ? doubtfulInRoutine : doubtful).insert(&name); }

bool IsDoubtful(const Word& name) {
    return doubtful.count(&name) != 0 || doubtfulInRoutine.count(&name) != 0;
}

void EndDoubtsOfRoutine() { doubtfulInRoutine.clear(); }

bool AnyMistakes() { return !kept.empty(); }

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
