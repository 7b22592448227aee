// Values that are known while translating: literals, Consts and arithmetic over them.
#pragma once

#include <optional>
#include <string>

#include "expressions/tree.h"

struct ConstantValue {
    enum class Kind : unsigned char { Integer, Real, Text } kind = Kind::Integer;
    // To C++, too: no checked division is in it, nor a Const that takes its value from one.
    bool toCpp = true;
    long long integer = 0;
    double real = 0;
    std::string text;  // with the language's escapes, as written

    double AsReal() const { return kind == Kind::Integer ? static_cast<double>(integer) : real; }
};

// Nothing when the expression is no constant, or one that only C++ could work out.
std::optional<ConstantValue> ConstantOf(const Expr& expr);
// The same for tokens, in which names mean what they mean at file level. What is wrong with them is not told.
std::optional<ConstantValue> ConstantIn(TokenSpan tokens);
// The value where it is a whole number.
std::optional<long long> IntegerOf(const std::optional<ConstantValue>& value);

// Works out the value of a Const; what is asked later only looks it up.
void SettleConstant(const std::string& name);
