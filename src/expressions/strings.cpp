// String literals: escapes and interpolation.
#include <vector>

#include "driver/report.h"
#include "expressions/walk.h"
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

bool HasHoles(const std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '~') {
            ++i;
        } else if (text[i] == '{') {
            return true;
        }
    }
    return false;
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

std::string Stripped(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t") - first + 1);
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

std::string Hole(const Tag& tag, const std::string& rawContent) {
    const std::string content = Stripped(rawContent);
    if (content.empty()) ReportFatal(std::string("Empty string interpolation hole '{") + tag.tag + "}'");
    const DepthGuard guard;
    const Tokens tokens = Split(content);
    const Expr value = TranslateExpression(tokens, ExprMode::Condition);
    CheckTag(tag, content, value);
    return (tag.base == Base::String ? "(" : "std::to_string(") + ValueText(value) + ")";
}

struct Pieces {
    std::vector<std::string> texts;
    int calling = 0;  // how many of them call something

    void Add(std::string piece) { texts.push_back(std::move(piece)); }

    // The first piece makes the sum a std::string; the others are added to it. Calls come one after the
    // other, which C++ warrants between braces only.
    std::string Text() const {
        if (calling > 1) RequireSupport(Support::TextInOrder);
        std::string text = calling > 1 ? "(__kvText({" : "(std::string(";
        const char* separator = calling > 1 ? ", " : " + ";
        for (std::size_t i = 0; i < texts.size(); ++i) {
            if (i > 0) text += separator;
            text += texts[i];
            if (i == 0 && calling < 2) text += ')';
        }
        return text + (calling > 1 ? "}))" : ")");
    }
};

// Position behind the hole that begins at `open`.
std::size_t AddHole(const std::string& text, std::size_t open, Pieces& pieces) {
    if (open + 1 == text.size()) ReportFatal("Unterminated string interpolation hole '{'");
    const Tag* tag = FindTag(text[open + 1]);
    if (tag == nullptr) {
        ReportFatal("String interpolation hole must start with a type tag: {$str}, {%int} or {!double}");
    }
    const std::size_t close = text.find('}', open);
    if (close == std::string::npos) ReportFatal("Unterminated string interpolation hole - missing '}'");
    const std::size_t calls = callCount;
    pieces.Add(Hole(*tag, text.substr(open + 2, close - open - 2)));
    if (callCount != calls) ++pieces.calling;
    return close + 1;
}

std::string Interpolated(const std::string& text) {
    Pieces pieces;
    std::size_t start = 0;
    std::size_t i = 0;
    while (i < text.size()) {
        if (text[i] == '~') {
            i += 2;
        } else if (text[i] == '{') {
            if (i > start) pieces.Add(Literal(text, start, i));
            i = start = AddHole(text, i, pieces);
        } else {
            ++i;
        }
    }
    if (start < text.size()) pieces.Add(Literal(text, start, text.size()));
    return pieces.Text();
}

}  // namespace

Expr TranslateString(const std::string& token) {
    const std::size_t end = token.size() > 1 && token.back() == '"' ? token.size() - 1 : token.size();
    const std::string text = token.substr(1, end - 1);
    Expr expr;
    expr.type = Single(Base::String);
    expr.literal = !HasHoles(text);
    expr.text = expr.literal ? Literal(text, 0, text.size()) : Interpolated(text);
    return expr;
}
