#include "lexer/token_places.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

#include "base/run.h"
#include "lexer/holes.h"
#include "lexer/source_lines.h"

namespace {

struct FilePlaces {
    std::vector<TokenPlace> tokens;
    CutTrouble trouble, splitTrouble;
};

std::unordered_map<std::string, FilePlaces> placesByFile;
const PartOfRun partOfRun(placesByFile);

const FilePlaces& Placed(const std::string& file) {
    const auto [entry, isNew] = placesByFile.try_emplace(file);
    FilePlaces& found = entry->second;
    if (!isNew) return found;
    CutFile again;
    LineCutter cutter(again, &found.tokens);
    if (!cutter.Open(file)) return found;
    do cutter.CutNext();
    while (!again.lines.back().isEnd);
    found.trouble = again.trouble;
    found.splitTrouble = again.splitTrouble;
    return found;
}

// The tokens [at, at + count) of a file's list.
bool PlaceInFile(const Token* at, std::size_t count, SourcePlace& place) {
    std::size_t index = 0;
    place.file = FileWithToken(at, index);
    if (place.file.empty()) return false;
    const std::vector<TokenPlace>& places = PlacesOf(place.file);
    place.where = places[index];
    for (std::size_t i = index; i < index + count && places[i].line == place.where.line; ++i)
        place.where.last = places[i].last;
    return true;
}

// The tokens [at, at + count) of a hole, whose literal stands at `literal` in a file's list.
bool PlaceInHole(const Token* literal, const StringPiece& hole, std::size_t at, std::size_t count,
                 SourcePlace& place) {
    if (!PlaceInFile(literal, 1, place)) return false;
    const std::string& text = (*literal)->text;
    std::size_t from = hole.from + 2, begin = from;  // behind the brace and the tag
    for (std::size_t i = 0; i < at + count; ++i) {
        from = text.find_first_not_of(" \t", from);
        if (i == at) begin = from;
        from += hole.tokens[i]->text.size();
    }
    place.where.last = place.where.first + static_cast<int>(from) - 1;
    place.where.first += static_cast<int>(begin);
    return true;
}

// Where the tokens stand in a row.
const Token* FindIn(TokenSpan span, TokenSpan wanted) {
    const Token* found = std::search(span.first, span.last, wanted.first, wanted.last);
    return found == span.last ? nullptr : found;
}

// In the statement, or in a hole of a String there.
bool FindCopy(TokenSpan wanted, TokenSpan statement, SourcePlace& place) {
    if (const Token* found = FindIn(statement, wanted)) return PlaceInFile(found, wanted.size(), place);
    for (const Token* token = statement.first; token != statement.last; ++token) {
        if (!HasHoles(**token)) continue;
        for (const StringPiece& piece : PiecesOf(**token)) {
            const Token* found = FindIn(piece.tokens, wanted);
            if (found == nullptr || piece.tokens.empty()) continue;
            const auto at = static_cast<std::size_t>(found - piece.tokens.data());
            return PlaceInHole(token, piece, at, wanted.size(), place);
        }
    }
    return false;
}

}  // namespace

const std::vector<TokenPlace>& PlacesOf(const std::string& file) { return Placed(file).tokens; }

bool FindPlace(const Stop::Subject& subject, TokenSpan statement, SourcePlace& place) {
    const TokenSpan wanted(subject.tokens);
    if (wanted.empty()) return false;
    return PlaceInFile(subject.at, wanted.size(), place) || FindCopy(wanted, statement, place) ||
           FindCopy(wanted.Slice(0, 1), statement, place);
}

void Locate(korvel::Diagnostic& said, const Stop::Subject& about) {
    SourcePlace place;
    if (!FindPlace(about, {}, place)) return;
    said.file = place.file;
    said.line = place.where.line;
    said.firstColumn = place.where.first;
    said.lastColumn = place.where.last;
}

bool FindPlace(TokenSpan tokens, SourcePlace& place) {
    return !tokens.empty() && PlaceInFile(tokens.first, tokens.size(), place);
}

// The tokens of a file from the line on, up to another line.
static TokenSpan TokensBetween(const std::string& file, int line, int end) {
    const TokenSpan tokens = TokensOf(file);
    const std::vector<TokenPlace>& places = PlacesOf(file);
    if (tokens.size() != places.size()) return {};
    const auto before = [](const TokenPlace& at, int wanted) { return at.line < wanted; };
    const auto indexOf = [&](int wanted) {
        return static_cast<std::size_t>(std::lower_bound(places.begin(), places.end(), wanted, before) -
                                        places.begin());
    };
    return tokens.Slice(indexOf(line), indexOf(end));
}

bool FindOnLine(const std::string& file, int line, TokenSpan words, TokenPlace& place) {
    const TokenSpan tokens = TokensBetween(file, line, line + 1);
    if (tokens.empty()) return false;
    const Token* found = words.empty() ? nullptr : FindIn(tokens, words);
    const std::size_t count = found != nullptr ? words.size() : 1;
    if (found == nullptr && !words.empty()) {
        const std::string lower = Lower(words[0]);
        const auto same = [&lower](Token token) { return IsWord(token->text, lower); };
        found = std::find_if(tokens.first, tokens.last, same);
    }
    SourcePlace at;
    const bool isPlaced =
        PlaceInFile(found == nullptr || found == tokens.last ? tokens.first : found, count, at);
    place = at.where;
    return isPlaced;
}

bool FindTrouble(const korvel::Diagnostic& mistake, TokenPlace& place) {
    const FilePlaces& places = Placed(mistake.file);
    for (const CutTrouble* trouble : {&places.trouble, &places.splitTrouble}) {
        if (trouble->message == nullptr || mistake.message != trouble->message) continue;
        place = trouble->where;
        return place.line != 0;
    }
    return false;
}

bool FindName(const std::string& file, int line, const std::string& name, TokenPlace& place) {
    const TokenSpan tokens = TokensBetween(file, line, std::numeric_limits<int>::max());
    const Token* found = FindIn(tokens, Tokens{name});
    SourcePlace at;
    if (found == nullptr || !PlaceInFile(found, 1, at)) return false;
    place = at.where;
    return true;
}
