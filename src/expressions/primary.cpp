// Operands: literals, parentheses, names.
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdlib>

#include "base/report.h"
#include "expressions/walk.h"
#include "symbols/identifiers.h"
#include "symbols/uses.h"

namespace {

bool AllDigits(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), IsDigit);
}

Expr& Number(const Word& word, Base base) {
    Expr& number = NewNode(ExprKind::Number, Single(base));
    number.word = &word;
    return number;
}

// Int, or Long where the number is too large for one.
Base SizeOf(const std::string& text, int radix) {
    unsigned long long value = 0;
    const std::errc trouble = std::from_chars(text.data(), text.data() + text.size(), value, radix).ec;
    if (trouble != std::errc() || (radix == 10 && value > static_cast<unsigned long long>(LLONG_MAX))) {
        ReportFatal("Number too large: " + text, Tokens{text});
    }
    return value > static_cast<unsigned long long>(INT_MAX) ? Base::Long : Base::Int;
}

std::string Hexadecimal(const std::string& token) { return "0x" + token.substr(1); }

bool IsBeyondLong(const std::string& hexadecimal) {
    return std::strtoull(hexadecimal.c_str(), nullptr, 16) > static_cast<unsigned long long>(LLONG_MAX);
}

// Where C++ would have it without a sign, which comparisons and sums spread to what stands beside it, it is said to be
// a Long: 0xFFFFFFFFL , static_cast<long>(0xFFFFFFFFFFFFFFFF)
const Word& SignedHexadecimal(const std::string& token) {
    const std::string text = Hexadecimal(token);
    if (IsBeyondLong(text)) return WordOf("static_cast<long>(" + text + ")");
    const unsigned long long value = std::strtoull(text.c_str(), nullptr, 16);
    return WordOf(value > INT_MAX && value <= UINT_MAX ? text + "L" : text);
}

Expr& ParseHexadecimal(Walk& walk) {
    const std::string& token = walk.Take();
    return Number(SignedHexadecimal(token), SizeOf(token.substr(1), 16));
}

bool IsHexadecimal(const std::string& token) {
    if (token.size() < 2 || token[0] != '$') return false;
    for (std::size_t i = 1; i < token.size(); ++i) {
        if (!IsHexDigit(token[i])) return false;
    }
    return true;
}

// A leading zero would make the number octal in C++.
const Word& WithoutLeadingZeros(const Word& digits) {
    if (digits.text[0] != '0' || digits.text.size() == 1) return digits;
    const std::size_t first = digits.text.find_first_not_of('0');
    return WordOf(first == std::string::npos ? "0" : digits.text.substr(first));
}

bool IsExponent(char c) { return c == 'e' || c == 'E'; }

const Hint wayToNumber = {"A number is made of digits, with a point among them for a Double: 1000, 1.5, 5.0"};

// 5. , 1.x
[[noreturn]] void FailPoint(const Walk& walk) {
    const std::string& behind = walk.Peek(1);
    const bool isPart =
        walk.PeekSign(1) == '\0' && walk.tokens.KeywordAt(walk.at + 1) == Keyword::None && !IsQuoted(behind);
    const TokenSpan number = walk.tokens.Slice(walk.at - 1, walk.at + (isPart && !behind.empty() ? 2 : 1));
    ReportFatal("Invalid number '" + number.Text("") + "'" + wayToNumber, number);
}

// 1.5 , 2e6 , and the pieces 1.5e and - and 3 of 1.5e-3.
Expr& ParseDouble(Walk& walk, std::string text) {
    if (IsExponent(text.back()) && (walk.PeekSign() == '-' || walk.PeekSign() == '+') &&
        AllDigits(walk.Peek(1))) {
        text += walk.Take();
        text += walk.Take();
    }
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(text.c_str(), &end);
    if (*end != '\0' || text.find_first_not_of("0123456789.eE+-") != std::string::npos) {
        ReportFatal("Invalid number '" + text + "'" + wayToNumber, Tokens{text});
    }
    if (errno == ERANGE && value > 1.0) ReportFatal("Number too large: " + text, Tokens{text});
    return Number(WordOf(text), Base::Double);
}

Expr& ParseNumber(Walk& walk) {
    const Word& token = walk.tokens.At(walk.at++);
    if (walk.PeekSign() == '.') FailPoint(walk);
    if (!AllDigits(token.text)) return ParseDouble(walk, token.text);
    const Word& digits = WithoutLeadingZeros(token);
    return Number(digits, SizeOf(digits.text, 10));
}

// A value that is what the one in it is, but for its place.
Expr& ParseParentheses(Walk& walk) {
    walk.Take();
    Expr& value = InBrackets(walk, ParseValue);
    walk.Expect(')');
    RequireValue(value);
    Expr& result = NewNode(ExprKind::Parentheses, value.type, value);
    result.form = value.form;
    result.literal = value.literal;
    result.isCall = value.isCall;
    result.byValue = value.byValue;
    result.isConst = value.isConst;
    return result;
}

bool IsComparison(const std::string& sign) { return sign == "<" || sign == ">" || sign == "="; }
bool IsCompound(const std::string& op) { return op == "+" || op == "-" || op == "*" || op == "/"; }

}  // namespace

static bool BeginsStatement(Keyword word) {
    return word == Keyword::Print || word == Keyword::Return || word == Keyword::Exit ||
           word == Keyword::Continue;
}

// Behind which nothing stands: n = 1 +
[[noreturn]] static void FailWithoutOperand(const Walk& walk) {
    if (walk.at == 0) ReportFatal("Missing expression", walk.tokens.Slice(0, 0));
    const bool isPair =
        walk.at > 1 && IsComparison(walk.tokens[walk.at - 1]) && IsComparison(walk.tokens[walk.at - 2]);
    const TokenSpan sign = walk.tokens.Slice(walk.at - (isPair ? 2 : 1), walk.at);
    ReportFatal("Missing operand after '" + Wording{sign[sign.size() - 1], sign.Text("")} + "'", sign);
}

Hint MissingBefore(const Walk& walk) {
    const std::string& token = walk.Peek();
    const bool isOperand = token[0] == '"' || IsDigit(token[0]) || (IsName(token) && !IsCppWord(token));
    return Hint{walk.at > 0 && isOperand && walk.PeekKeyword() == Keyword::None
                    ? "A comma or an operator is missing before it"
                    : ""};
}

void FailUnexpected(const Walk& walk) {
    const std::string before = walk.at == 0 ? "" : walk.tokens[walk.at - 1];
    if (walk.Done()) FailWithoutOperand(walk);
    const std::string& token = walk.Peek();
    if (Is(token, "=") && IsCompound(before)) {
        ReportFatal("There is no operator '" + before + "='. Write the assignment out, as in 'x = x " +
                        before + " 1'",
                    walk.tokens.Slice(walk.at - 1, walk.at + 1));
    }
    Wording message = "Unexpected '" + token + "' in an expression" + MissingBefore(walk);
    if (BeginsStatement(walk.PeekKeyword()))
        message = message + Hint{"Behind a condition stands Then: If n = 1 Then Print n"};
    ReportFatal(message, walk.tokens.Slice(walk.at, walk.at + 1));
}

namespace {

// What nothing may follow: .5 , $FF , std:max(a, b)
bool StandsAlone(const Walk& walk) {
    if (walk.PeekSign() == '.') return IsDigit(walk.Peek(1)[0]);
    return IsHexadecimal(walk.Peek()) || (walk.PeekSign(1) == ':' && Is(walk.Peek(), "std"));
}

Expr& ParseAlone(Walk& walk) {
    if (IsHexadecimal(walk.Peek())) return ParseHexadecimal(walk);
    return walk.Match('.') ? ParseDouble(walk, "0." + walk.Take()) : ParseLibraryName(walk);
}

Expr& ParseOperand(Walk& walk) {
    const std::string& token = walk.Peek();
    const char c = token[0];
    if (token.empty()) FailUnexpected(walk);
    if (c == '"') return ParseString(walk);
    if (c == '(') return ParseParentheses(walk);
    if (IsDigit(c)) return ParseNumber(walk);
    if (!IsIdentifier(token)) FailUnexpected(walk);
    return ParseName(walk);
}

}  // namespace

std::string HexadecimalDigits(const Expr& value) {
    if (value.kind != ExprKind::Number || !IsHexadecimal(value.source[0])) return "";
    return value.source[0].substr(1);
}

const Word* AsWritten(const Expr& value, const ValueType& to) {
    if (HexadecimalDigits(value).empty()) return nullptr;
    const std::string text = Hexadecimal(value.source[0]);
    return IsBeyondLong(text) && !to.IsInteger() ? nullptr : &WordOf(text);
}

void LeaveAsWritten(Expr& value) {
    if (const Word* written = AsWritten(value, {})) value.word = written;
}

Expr& ParsePrimary(Walk& walk) {
    const bool alone = StandsAlone(walk);
    const Word& name = walk.tokens.At(walk.at);
    const std::size_t begin = walk.at;
    Expr& operand = alone ? ParseAlone(walk) : ParseOperand(walk);
    operand.source = walk.Since(begin);
    if (alone) return operand;
    NoteType(operand.source, operand.type);
    walk.operandAt = begin;
    const bool goesOn = operand.level == Level::Primary && BeginsPostfix(walk.PeekSign());
    return goesOn ? ParsePostfix(walk, operand, name) : operand;
}
