#include "symbols/hole_fixes.h"

#include "lexer/holes.h"
#include "symbols/fixes.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"

namespace {

// Puts the text in place of the bytes [from, to) of the literal; true, for the caller to hand on.
bool FixPart(korvel::Diagnostic& mistake, std::size_t from, std::size_t to, const std::string& text) {
    const auto literal = static_cast<std::size_t>(mistake.firstColumn) - 1;
    AddFix(mistake, literal + from, literal + to, text);
    return true;
}

// "{n}" is about n, and so is "{%n}".
std::string ContentOf(const StringPiece& piece, const std::string& literal) {
    if (piece.kind == StringPiece::Kind::Hole) return piece.content;
    const bool isClosed = piece.to > piece.from + 2 && literal[piece.to - 1] == '}';
    return isClosed ? literal.substr(piece.from + 1, piece.to - piece.from - 2) : "";
}

// Without its brace a hole goes on to the end of the literal, or into the hole behind it.
bool IsOpen(const StringPiece& piece, const std::string& content) {
    if (piece.kind == StringPiece::Kind::Hole) return content.find('{') != std::string::npos;
    return content.empty() && piece.to > piece.from + 2;
}

// {%n, but not {%F(n
bool CloseHole(korvel::Diagnostic& mistake, const std::string& literal, std::size_t name) {
    const std::size_t end = EndOfName(literal, name);
    const char next = end < literal.size() ? literal[end] : '\0';
    return end > name && next != '(' && next != '[' && FixPart(mistake, end, end, "}");
}

}  // namespace

std::string HoleFor(const std::string& content, const ValueType& type) {
    const char* const tag = type.Is(Base::String)   ? "$"
                            : type.Is(Base::Int)    ? "%"
                            : type.Is(Base::Double) ? "!"
                                                    : "";
    if (*tag != '\0') return "{" + (tag + content) + "}";
    return type.IsNumber() ? "{%" + content + " + 0}" : "";
}

bool FixHole(korvel::Diagnostic& mistake, const Word& literal, std::size_t from) {
    if (mistake.firstColumn == 0 || !HasHoles(literal)) return false;
    for (const StringPiece& piece : PiecesOf(literal)) {
        if (piece.kind == StringPiece::Kind::Text || piece.from != from) continue;
        const std::string content = ContentOf(piece, literal.text);
        const Variable* const variable = IsName(content) ? FindVariable(content) : nullptr;
        const std::string hole = variable == nullptr ? "" : HoleFor(content, variable->type);
        if (!hole.empty() && literal.text.compare(piece.from, piece.to - piece.from, hole) != 0)
            return FixPart(mistake, piece.from, piece.to, hole);
        if (IsOpen(piece, content)) return CloseHole(mistake, literal.text, piece.from + 2);
    }
    return false;
}
