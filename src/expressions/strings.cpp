// String literals: escapes and interpolation.
#include <string>
#include <vector>

#include "base/report.h"
#include "expressions/order.h"
#include "expressions/walk.h"
#include "expressions/writer.h"
#include "lexer/holes.h"
#include "lexer/lexer.h"
#include "prelude/support.h"
#include "symbols/hole_fixes.h"
#include "symbols/scopes.h"

namespace {

struct Tag {
    char tag;
    Base base;
    const char* korvel;
};

const Tag tags[] = {{'$', Base::String, "String"}, {'%', Base::Int, "Int"}, {'!', Base::Double, "Double"}};

const Tag* FindTag(char c) {
    for (const Tag& tag : tags) {
        if (tag.tag == c) return &tag;
    }
    return nullptr;
}

// The C++ spelling of a tilde pair; null when the pair is none.
const char* Escaped(char c) {
    switch (c) {
        case 't':
            return "\\t";
        case 'n':
            return "\\n";
        case 'r':
            return "\\r";
        case 'q':
            return "\\\"";
        case '~':
            return "~";
        case '{':
            return "{";
        case '}':
            return "}";
        default:
            return nullptr;
    }
}

std::string Octal(unsigned char c) {
    std::string text = "\\";
    for (int shift = 6; shift >= 0; shift -= 3) text += static_cast<char>('0' + ((c >> shift) & 7));
    return text;
}

// Characters that would end the line or begin a trigraph are written so that they mean themselves.
void AppendCharacter(std::string& out, char c, char before) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\\') {
        out += "\\\\";
    } else if (c == '?' && before == '?') {
        out += "\\?";
    } else if ((byte < 32 && c != '\t') || byte == 127) {
        out += Octal(byte);
    } else {
        out += c;
    }
}

void WriteLiteral(Code& out, const std::string& text, std::size_t from, std::size_t to) {
    out += '"';
    for (std::size_t i = from; i < to; ++i) {
        const char* pair = text[i] == '~' && i + 1 < to ? Escaped(text[i + 1]) : nullptr;
        if (pair != nullptr) {
            out += pair;
            ++i;
        } else {
            AppendCharacter(out.text, text[i], i > from ? text[i - 1] : '\0');
        }
    }
    out += '"';
}

[[noreturn]] void FailTag(const Tag& tag, const std::string& content, const ValueType& type,
                          TokenSpan literal) {
    const std::string advice = " - use {%" + content + "} or {!" + content + "}";
    const std::string hole = HoleFor(content, type);
    ReportFatal(std::string("Interpolation tag '") + tag.tag + "' (" + tag.korvel + ") does not match '" +
                    content + "' which is " + InWords(type) + (tag.tag == '$' ? advice : "") +
                    Hint{hole.empty() ? "" : "Write " + hole},
                literal);
}

// A variable must be exactly what the tag says; other expressions must be of the right kind.
void CheckTag(const Tag& tag, const std::string& content, const Expr& value, TokenSpan literal) {
    const Variable* variable = FindLocal(content);
    if (variable == nullptr) variable = FindGlobal(content);
    if (variable != nullptr && !variable->isConst && variable->type.IsKnown() &&
        !variable->type.Is(tag.base)) {
        FailTag(tag, content, variable->type, literal);
    }
    const bool fits = tag.base == Base::String ? value.type.Is(Base::String) : value.type.IsNumber();
    if (value.type.IsKnown() && !fits) FailTag(tag, content, value.type, literal);
}

const Hint wayToBrace = {
    "{%n} shows a whole number, {!d} a Double, {$s} a text, none of them with quotes in it. A brace "
    "itself is written ~{"};

Expr& ParseHole(const StringPiece& hole, TokenSpan literal) {
    const Tag& tag = *FindTag(hole.tag);
    if (hole.content.find('{') != std::string::npos)
        ReportFatal("Unexpected '{' in an expression" + wayToBrace, literal);
    const DepthGuard guard;
    ShowSplit(hole.content);
    Expr& value = TranslateValue(hole.tokens, ExprMode::Condition);
    CheckTag(tag, hole.content, value, literal);
    return value;
}

// What is no hole, or an empty one, is told before what stands in others.
void CheckHoles(const std::vector<StringPiece>& pieces, TokenSpan literal) {
    for (const StringPiece& piece : pieces) {
        AboutPart(literal, piece.from, piece.to, [&] {
            if (piece.kind == StringPiece::Kind::Trouble) ReportFatal(piece.trouble + wayToBrace, literal);
            if (piece.kind == StringPiece::Kind::Hole && piece.content.empty())
                ReportFatal(std::string("Empty string interpolation hole '{") + piece.tag + "}'");
        });
    }
}

PartList ParseHoles(TokenSpan literal) {
    const std::vector<StringPiece>& pieces = PiecesOf(literal.At(0));
    PartList holes;
    LimitTexts(pieces.size());
    CheckHoles(pieces, literal);
    for (const StringPiece& piece : pieces) {
        if (piece.kind != StringPiece::Kind::Hole) continue;
        AboutPart(literal, piece.from, piece.to, [&] { holes.Add(ParseHole(piece, literal)); });
    }
    return holes;
}

void WriteHole(Code& out, const StringPiece& hole, const Expr& value) {
    Put(out, hole.tag == '$' ? "(" : "std::to_string(", AsValue{value}, ")");
}

}  // namespace

Expr& ParseString(Walk& walk) {
    const Word& literal = walk.tokens.At(walk.at++);
    const bool holes = HasHoles(literal);
    Expr& expr = NewNode(holes ? ExprKind::Holes : ExprKind::Text, Single(Base::String));
    expr.word = &literal;
    expr.literal = !holes;
    if (!holes) return expr;
    const PartList values = ParseHoles(walk.Taken());
    expr.first = values.First();
    expr.effects = values.HaveEffects();
    return expr;
}

void WriteText(Code& out, const Expr& expr) {
    const std::vector<StringPiece>& pieces = PiecesOf(*expr.word);
    if (pieces.empty())
        out += "\"\"";
    else
        WriteLiteral(out, expr.word->text, pieces[0].from, pieces[0].to);
}

// The first piece makes the sum a std::string; the others are added to it:
//     (std::string("n is ") + std::to_string(KVL_n))
// C++ warrants the order of what stands between braces only:
//     (__kvText({"n is ", std::to_string(KVL_Next ( ))}))
void WriteHoles(Code& out, const Expr& expr) {
    const std::vector<StringPiece>& pieces = PiecesOf(*expr.word);
    const bool braces = expr.ordered || pieces.size() > manyTexts;
    if (braces) RequireSupport(Support::TextInOrder);
    out += braces ? "(__kvText({" : "(std::string(";
    const Expr* value = expr.first;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0) out += braces ? ", " : " + ";
        if (pieces[i].kind == StringPiece::Kind::Hole) {
            WriteHole(out, pieces[i], *value);
            value = value->next;
        } else {
            WriteLiteral(out, expr.word->text, pieces[i].from, pieces[i].to);
        }
        if (i == 0 && !braces) out += ')';
    }
    out += braces ? "}))" : ")";
}
