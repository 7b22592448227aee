#include "lexer/token_places.h"

#include <algorithm>
#include <unordered_map>

#include "base/run.h"
#include "lexer/holes.h"
#include "lexer/source_lines.h"

namespace {

std::unordered_map<std::string, std::vector<TokenPlace>> placesByFile;
const PartOfRun partOfRun(placesByFile);

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

const std::vector<TokenPlace>& PlacesOf(const std::string& file) {
    const auto [entry, isNew] = placesByFile.try_emplace(file);
    if (!isNew) return entry->second;
    CutFile again;
    LineCutter cutter(again, &entry->second);
    if (!cutter.Open(file)) return entry->second;
    do cutter.CutNext();
    while (!again.lines.back().isEnd);
    return entry->second;
}

bool FindPlace(const Stop::Subject& subject, TokenSpan statement, SourcePlace& place) {
    const TokenSpan wanted(subject.tokens);
    if (wanted.empty()) return false;
    return PlaceInFile(subject.at, wanted.size(), place) || FindCopy(wanted, statement, place) ||
           FindCopy(wanted.Slice(0, 1), statement, place);
}

bool FindPlace(TokenSpan tokens, SourcePlace& place) {
    return !tokens.empty() && PlaceInFile(tokens.first, tokens.size(), place);
}

bool FindName(const std::string& file, int line, const std::string& name, TokenPlace& place) {
    const TokenSpan tokens = TokensOf(file);
    const std::vector<TokenPlace>& places = PlacesOf(file);
    if (tokens.size() != places.size()) return false;
    const auto from = std::lower_bound(places.begin(), places.end(), line,
                                       [](const TokenPlace& at, int wanted) { return at.line < wanted; });
    const Token* found = std::find(tokens.first + (from - places.begin()), tokens.last, Token(name));
    if (found == tokens.last) return false;
    place = places[static_cast<std::size_t>(found - tokens.first)];
    return true;
}
