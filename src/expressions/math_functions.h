// The math functions of the language: which names they have and what C++ they become.
#pragma once

#include <string_view>
#include <vector>

#include "expressions/code.h"
#include "symbols/value_type.h"

struct MathFunction {
    int arguments;
    std::string_view text;  // $1 and $2 stand for the arguments
    bool repeats = false;   // an argument
    Base result = Base::Double;
};

// Null when there is none with this lower-case name.
const MathFunction* FindMath(std::string_view lowerName);

// Appends the C++ call with the arguments filled in.
void WriteCall(Code& out, const MathFunction& function, const std::vector<Code>& arguments);
