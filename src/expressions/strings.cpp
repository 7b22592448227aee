// String literals: escapes and interpolation.
#include <string>
#include <vector>

#include "analysis/effects.h"
#include "base/report.h"
#include "expressions/text_sum.h"
#include "expressions/walk.h"
#include "lexer/holes.h"
#include "lexer/lexer.h"
#include "prelude/support.h"
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

std::string Literal(const std::string& text, std::size_t from, std::size_t to) {
    std::string out = "\"";
    for (std::size_t i = from; i < to; ++i) {
        const char* pair = text[i] == '~' && i + 1 < to ? Escaped(text[i + 1]) : nullptr;
        if (pair != nullptr) {
            out += pair;
            ++i;
        } else {
            AppendCharacter(out, text[i], i > from ? text[i - 1] : '\0');
        }
    }
    return out + "\"";
}

[[noreturn]] void FailTag(const Tag& tag, const std::string& content, const ValueType& type) {
    std::string message = std::string("Interpolation tag '") + tag.tag + "' (" + tag.korvel +
                          ") does not match '" + content + "' which is " + CppName(type);
    if (tag.tag == '$') message += " - use {%" + content + "} or {!" + content + "}";
    ReportFatal(message);
}

// A variable must be exactly what the tag says; other expressions must be of the right kind.
void CheckTag(const Tag& tag, const std::string& content, const Expr& value) {
    const Variable* variable = FindLocal(content);
    if (variable == nullptr) variable = FindGlobal(content);
    if (variable != nullptr && !variable->isConst && variable->type.IsKnown() &&
        !variable->type.Is(tag.base)) {
        FailTag(tag, content, variable->type);
    }
    const bool fits = tag.base == Base::String ? value.type.Is(Base::String) : value.type.IsNumber();
    if (value.type.IsKnown() && !fits) FailTag(tag, content, value.type);
}

// The text of what stands in the hole.
std::string HoleText(const StringPiece& hole) {
    const Tag& tag = *FindTag(hole.tag);
    if (hole.content.empty()) ReportFatal(std::string("Empty string interpolation hole '{") + tag.tag + "}'");
    const DepthGuard guard;
    ShowSplit(hole.content);
    const Expr value = TranslateExpression(hole.tokens, ExprMode::Condition);
    CheckTag(tag, hole.content, value);
    return (tag.base == Base::String ? "(" : "std::to_string(") + ValueText(value) + ")";
}

// Whether the order in which the holes are worked out can be seen.
bool HolesNeedOrder(const std::vector<StringPiece>& pieces) {
    std::vector<TokenSpan> holes;
    for (const StringPiece& piece : pieces)
        if (piece.kind == StringPiece::Kind::Hole) holes.emplace_back(piece.tokens);
    return OrderCanBeSeen(holes);
}

// The first piece makes the sum a std::string; the others are added to it:
//     (std::string("n is ") + std::to_string(KVL_n))
// C++ warrants the order of what stands between braces only:
//     (__kvText({"n is ", std::to_string(KVL_Next ( ))}))
std::string SumOf(const std::vector<std::string>& texts, bool braces) {
    if (braces) RequireSupport(Support::TextInOrder);
    std::string text = braces ? "(__kvText({" : "(std::string(";
    const char* separator = braces ? ", " : " + ";
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i > 0) text += separator;
        text += texts[i];
        if (i == 0 && !braces) text += ')';
    }
    return text + (braces ? "}))" : ")");
}

std::string Interpolated(const std::string& token, const std::vector<StringPiece>& pieces) {
    std::vector<std::string> texts;
    const std::size_t calls = callCount;
    TextSum::Limit(pieces.size());
    for (const StringPiece& piece : pieces) {
        if (piece.kind == StringPiece::Kind::Trouble) ReportFatal(piece.trouble);
        const bool hole = piece.kind == StringPiece::Kind::Hole;
        texts.push_back(hole ? HoleText(piece) : Literal(token, piece.from, piece.to));
    }
    const bool inOrder = callCount != calls && HolesNeedOrder(pieces);
    return SumOf(texts, inOrder || texts.size() > TextSum::many);
}

}  // namespace

Expr TranslateString(const Word& token) {
    const std::vector<StringPiece>& pieces = PiecesOf(token);
    Expr expr;
    expr.type = Single(Base::String);
    expr.literal = !HasHoles(token);
    if (!expr.literal) {
        expr.text = Interpolated(token.text, pieces);
    } else {
        expr.text = pieces.empty() ? "\"\"" : Literal(token.text, pieces[0].from, pieces[0].to);
    }
    return expr;
}
