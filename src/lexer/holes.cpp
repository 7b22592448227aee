#include "lexer/holes.h"

#include <algorithm>
#include <deque>
#include <string_view>

#include "base/run.h"
#include "base/token_text.h"
#include "lexer/lexer.h"

namespace {

constexpr std::string_view tags = "$%!";

std::string Stripped(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return "";
    return std::string(text.substr(first, text.find_last_not_of(" \t") - first + 1));
}

// The literal without its quotes; its closing one may be missing.
std::size_t EndOf(std::string_view token) {
    return token.size() > 1 && token.back() == '"' ? token.size() - 1 : token.size();
}

StringPiece Trouble(const char* message, std::size_t from, std::size_t to) {
    StringPiece piece;
    piece.kind = StringPiece::Kind::Trouble;
    piece.from = from;
    piece.to = to;
    piece.trouble = message;
    return piece;
}

// The hole whose brace stands at `open`; the literal ends at `end`.
StringPiece CutHole(std::string_view token, std::size_t open, std::size_t end) {
    if (open + 1 == end) return Trouble("Unterminated string interpolation hole '{'", open, end);
    const std::size_t close = token.find('}', open);
    if (tags.find(token[open + 1]) == std::string_view::npos)
        return Trouble("String interpolation hole must start with a type tag: {$str}, {%int} or {!double}",
                       open, close < end ? close + 1 : open + 1);
    if (close >= end)
        return Trouble("Unterminated string interpolation hole - missing '}'", open,
                       EndOfName(token, open + 2));
    StringPiece piece;
    piece.kind = StringPiece::Kind::Hole;
    piece.from = open;
    piece.to = close + 1;
    piece.tag = token[open + 1];
    piece.content = Stripped(token.substr(open + 2, close - open - 2));
    piece.tokens = Cut(piece.content);
    return piece;
}

std::vector<StringPiece> CutPieces(std::string_view token) {
    std::vector<StringPiece> pieces;
    const std::size_t end = EndOf(token);
    std::size_t start = 1;
    const auto addText = [&](std::size_t to) {
        if (to <= start) return;
        StringPiece piece;
        piece.from = start;
        piece.to = to;
        pieces.push_back(piece);
    };
    for (std::size_t i = 1; i < end;) {
        if (token[i] == '~') {
            i += 2;
        } else if (token[i] == '{') {
            addText(i);
            pieces.push_back(CutHole(token, i, end));
            if (pieces.back().kind == StringPiece::Kind::Trouble) return pieces;
            i = start = pieces.back().to;
        } else {
            ++i;
        }
    }
    addText(end);
    return pieces;
}

std::deque<std::vector<StringPiece>> cutLiterals;  // for the words that point to them
const PartOfRun partOfRun(cutLiterals);

}  // namespace

std::size_t EndOfName(std::string_view literal, std::size_t at) {
    const auto isOfName = [](char c) { return IsLetterByte(c) || IsDigit(c) || c == '_' || c == '\\'; };
    while (at < literal.size() && isOfName(literal[at])) ++at;
    return at;
}

const std::vector<StringPiece>& PiecesOf(const Word& literal) {
    if (literal.pieces == nullptr) literal.pieces = &cutLiterals.emplace_back(CutPieces(literal.text));
    return *literal.pieces;
}

bool HoldsHole(const Word& braced) {
    const std::vector<StringPiece>& pieces = PiecesOf(braced);
    return std::any_of(pieces.begin(), pieces.end(),
                       [](const StringPiece& piece) { return piece.kind != StringPiece::Kind::Text; });
}
