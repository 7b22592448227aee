#include "debug/operators.h"

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>

#include "base/edit_distance.h"
#include "base/token_text.h"
#include "lexer/lexer.h"

namespace debug {

namespace {

const char longWord[] = "Long";

Value Narrowed(unsigned long long bits, bool isLong) {
    Value value = Plain('n', isLong ? std::to_string(static_cast<long>(bits))
                                    : std::to_string(static_cast<int>(static_cast<unsigned>(bits))));
    if (isLong) value.type = longWord;
    return value;
}

void NeedsNumber(const Value& value) {
    if (value.kind != 'b' && !IsNumber(value)) throw Refusal{Shown(value) + " is no number"};
}

double NumberOf(const Value& value) {
    NeedsNumber(value);
    if (value.kind == 'b') return IsTrue(value) ? 1 : 0;
    return std::strtod(value.text.c_str(), nullptr);
}

bool AreWhole(const Value& left, const Value& right) { return left.kind != 'd' && right.kind != 'd'; }

bool FitsInt(long long number) { return number >= INT_MIN && number <= INT_MAX; }
bool IsLong(const Value& value) { return value.type == longWord || !FitsInt(WholeOf(value)); }
bool IsLong(const Value& left, const Value& right) { return IsLong(left) || IsLong(right); }

// Whole numbers lose what does not fit, as in the program.
template <class Whole, class Broken>
Value Calculated(const Value& left, const Value& right, Whole whole, Broken broken) {
    if (!AreWhole(left, right)) return Double(broken(NumberOf(left), NumberOf(right)));
    const auto bits = [](const Value& value) { return static_cast<unsigned long long>(WholeOf(value)); };
    return Narrowed(whole(bits(left), bits(right)), IsLong(left, right));
}

// As it becomes a part of a String; a Print shows Doubles with fewer places.
std::string InText(const Value& value, const char* doubles) {
    if (value.kind == 'b') return IsTrue(value) ? "1" : "0";
    if (value.kind != 'd') return value.text;
    char text[400];
    std::snprintf(text, sizeof text, doubles, NumberOf(value));
    return text;
}

Value Add(const Value& left, const Value& right) {
    if (left.kind == 's' || right.kind == 's') {
        Value joined = Plain('s', InText(left, "%f") + InText(right, "%f"));
        joined.left = left.left + right.left;
        return joined;
    }
    return Calculated(left, right, std::plus<>(), std::plus<>());
}

Value Subtract(const Value& left, const Value& right) {
    return Calculated(left, right, std::minus<>(), std::minus<>());
}

Value Multiply(const Value& left, const Value& right) {
    return Calculated(left, right, std::multiplies<>(), std::multiplies<>());
}

void NeedsDivisor(const Value& value) {
    if (NumberOf(value) == 0) throw Refusal{"division by zero"};
}

Value Divide(const Value& left, const Value& right) {
    NeedsDivisor(right);
    if (!AreWhole(left, right)) return Double(NumberOf(left) / NumberOf(right));
    if (WholeOf(right) == -1)
        return Subtract(Plain('n', "0"), left);  // the smallest number has no counterpart
    return Narrowed(static_cast<unsigned long long>(WholeOf(left) / WholeOf(right)), IsLong(left, right));
}

Value Remainder(const Value& left, const Value& right) {
    NeedsDivisor(right);
    if (!AreWhole(left, right)) return Double(std::fmod(NumberOf(left), NumberOf(right)));
    const long long rest = WholeOf(right) == -1 ? 0 : WholeOf(left) % WholeOf(right);
    return Narrowed(static_cast<unsigned long long>(rest), IsLong(left, right));
}

// 0 when they are equal, more than 0 when the left one is greater.
int Order(const Value& left, const Value& right) {
    const bool areTexts = left.kind == right.kind && !IsNumber(left) && left.kind != 'b';
    if (areTexts) return left.text.compare(right.text);
    NeedsNumber(left);
    NeedsNumber(right);
    if (AreWhole(left, right)) return (WholeOf(left) > WholeOf(right)) - (WholeOf(left) < WholeOf(right));
    return (NumberOf(left) > NumberOf(right)) - (NumberOf(left) < NumberOf(right));
}

// What is no number (0 / 0) differs from everything.
bool AreEqual(const Value& left, const Value& right) {
    const auto isNone = [](const Value& value) { return value.kind == 'd' && std::isnan(NumberOf(value)); };
    return !isNone(left) && !isNone(right) && Order(left, right) == 0;
}

// Of whole numbers their bits; else one behind the other, as between the items of a Print.
Value Together(const Value& left, const Value& right) {
    if (left.kind != 'n' || right.kind != 'n') return Plain('s', InText(left, "%g") + InText(right, "%g"));
    return Calculated(left, right, std::bit_and<>(), std::plus<>());
}

template <class Bits>
Value OfBits(const Value& left, const Value& right, Bits bits) {
    for (const Value& value : {left, right})
        if (value.kind == 'd') throw Refusal{value.text + " is no whole number"};
    return Calculated(left, right, bits, std::plus<>());
}

Value BitAnd(const Value& left, const Value& right) { return OfBits(left, right, std::bit_and<>()); }
Value BitOr(const Value& left, const Value& right) { return OfBits(left, right, std::bit_or<>()); }
Value BitXor(const Value& left, const Value& right) { return OfBits(left, right, std::bit_xor<>()); }

// The processor takes of the number of places what a number has.
Value Shifted(const Value& left, const Value& right, bool toLeft) {
    OfBits(left, right, std::bit_and<>());
    const bool isLong = IsLong(left);
    const auto places =
        static_cast<unsigned>(WholeOf(right)) % (CHAR_BIT * (isLong ? sizeof(long) : sizeof(int)));
    const long long number = WholeOf(left);
    return Narrowed(toLeft ? static_cast<unsigned long long>(number) << places
                           : static_cast<unsigned long long>(number >> places),
                    isLong);
}

const Operator operators[] = {
    {"or", Level::Or, [](const Value& a, const Value& b) { return Truth(IsTrue(a) || IsTrue(b)); }},
    {"||", Level::Or, [](const Value& a, const Value& b) { return Truth(IsTrue(a) || IsTrue(b)); }},
    {"and", Level::And, [](const Value& a, const Value& b) { return Truth(IsTrue(a) && IsTrue(b)); }},
    {"&&", Level::And, [](const Value& a, const Value& b) { return Truth(IsTrue(a) && IsTrue(b)); }},
    {"bitor", Level::BitOr, BitOr},
    {"|", Level::BitOr, BitOr},
    {"bitxor", Level::BitXor, BitXor},
    {"^", Level::BitXor, BitXor},
    {"bitand", Level::BitAnd, BitAnd},
    {"&", Level::BitAnd, Together},
    {"<>", Level::Equality, [](const Value& a, const Value& b) { return Truth(!AreEqual(a, b)); }},
    {"!=", Level::Equality, [](const Value& a, const Value& b) { return Truth(!AreEqual(a, b)); }},
    {"==", Level::Equality, [](const Value& a, const Value& b) { return Truth(AreEqual(a, b)); }},
    {"=", Level::Equality, [](const Value& a, const Value& b) { return Truth(AreEqual(a, b)); }},
    {"<=", Level::Relation, [](const Value& a, const Value& b) { return Truth(Order(a, b) <= 0); }},
    {">=", Level::Relation, [](const Value& a, const Value& b) { return Truth(Order(a, b) >= 0); }},
    {"<", Level::Relation, [](const Value& a, const Value& b) { return Truth(Order(a, b) < 0); }},
    {">", Level::Relation, [](const Value& a, const Value& b) { return Truth(Order(a, b) > 0); }},
    {"shl", Level::Shift, [](const Value& a, const Value& b) { return Shifted(a, b, true); }},
    {"shr", Level::Shift, [](const Value& a, const Value& b) { return Shifted(a, b, false); }},
    {"+", Level::Sum, Add},
    {"-", Level::Sum, Subtract},
    {"*", Level::Product, Multiply},
    {"/", Level::Product, Divide},
    {"mod", Level::Product, Remainder},
    {"%", Level::Product, Remainder},
};

const Operator signs[] = {
    {"-", Level::Sign, Subtract},
    {"+", Level::Sign, [](const Value&, const Value& of) { return Add(Plain('n', "0"), of); }},
    {"not", Level::Sign, [](const Value&, const Value& of) { return Truth(!IsTrue(of)); }},
    {"!", Level::Sign, [](const Value&, const Value& of) { return Truth(!IsTrue(of)); }},
    {"bitnot", Level::Sign, [](const Value&, const Value& of) { return BitXor(of, Plain('n', "-1")); }},
    {"~", Level::Sign, [](const Value&, const Value& of) { return BitXor(of, Plain('n', "-1")); }},
};

template <std::size_t count>
const Operator* Find(const Operator (&rows)[count], const std::string& text, std::size_t at) {
    for (const Operator& row : rows) {
        const std::size_t size = std::strlen(row.word);
        const bool endsThere =
            !IsNameByte(row.word[0]) || at + size >= text.size() || !IsNameByte(text[at + size]);
        if (endsThere && Lower(text.substr(at, size)) == row.word) return &row;
    }
    return nullptr;
}

}  // namespace

// Short names are like too many others.
std::string DidYouMean(const std::string& name, const std::vector<std::string>& known) {
    const std::string nearest = NearestWord(name, known, name.size() < 4 ? 0 : name.size() < 6 ? 1 : 2);
    return nearest.empty() ? "" : "; did you mean " + nearest + "?";
}

const Operator* FindOperator(const std::string& text, std::size_t at) { return Find(operators, text, at); }

const Operator* FindSign(const std::string& text, std::size_t at) { return Find(signs, text, at); }

Value Plain(char kind, const std::string& text) { return {"", "", kind, text, -1}; }

Value Truth(bool isTrue) { return Plain('b', isTrue ? "True" : "False"); }

Value WholeNumber(long long number) { return Plain('n', std::to_string(number)); }

// All digits that it takes to be the same number again.
Value Double(double number) {
    char text[40];
    for (int digits = 15; digits <= 17; ++digits) {
        std::snprintf(text, sizeof text, "%.*g", digits, number);
        if (std::strtod(text, nullptr) == number) break;
    }
    return Plain('d', text);
}

bool IsNumber(const Value& value) { return value.kind == 'n' || value.kind == 'd'; }

bool IsTrue(const Value& value) {
    switch (value.kind) {
        case 'b':
            return value.text == "True";
        case 'n':
        case 'd':
            return std::strtod(value.text.c_str(), nullptr) != 0;
        case 's':
            return !value.text.empty();
        default:
            return value.text != "Null";
    }
}

long long WholeOf(const Value& value) {
    NeedsNumber(value);
    if (value.kind == 'b') return IsTrue(value) ? 1 : 0;
    if (value.kind == 'd') return static_cast<long long>(NumberOf(value));
    return std::strtoll(value.text.c_str(), nullptr, 10);
}

}  // namespace debug
