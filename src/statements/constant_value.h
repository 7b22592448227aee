// Values that are known while translating: literals, Consts and arithmetic over them.
#pragma once

#include <optional>
#include <string>

#include "base/token_span.h"

struct ConstantValue {
    enum class Kind : unsigned char { Integer, Real, Text } kind = Kind::Integer;
    long long integer = 0;
    double real = 0;
    std::string text;  // with the language's escapes, as written

    double AsReal() const { return kind == Kind::Integer ? static_cast<double>(integer) : real; }
};

// Nothing when the tokens are no constant, or one that only C++ could work out.
std::optional<ConstantValue> EvaluateConstant(TokenSpan tokens);
