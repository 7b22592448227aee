#include "expressions/math_functions.h"

#include <unordered_map>

namespace {

#define TO_RADIANS "0.017453292519943295"
#define TO_DEGREES "57.29577951308232"

const std::unordered_map<std::string_view, MathFunction> functions = {
    {"pi", {0, "(3.141592653589793)"}},
    {"sin", {1, "std::sin(($1)*" TO_RADIANS ")"}},
    {"cos", {1, "std::cos(($1)*" TO_RADIANS ")"}},
    {"tan", {1, "std::tan(($1)*" TO_RADIANS ")"}},
    {"asin", {1, "(std::asin((double)($1))*" TO_DEGREES ")"}},
    {"acos", {1, "(std::acos((double)($1))*" TO_DEGREES ")"}},
    {"atan", {1, "(std::atan((double)($1))*" TO_DEGREES ")"}},
    {"atan2", {2, "(std::atan2((double)($1),(double)($2))*" TO_DEGREES ")"}},
    {"sqrt", {1, "std::sqrt((double)($1))"}},
    {"cbrt", {1, "std::cbrt((double)($1))"}},
    {"pow", {2, "std::pow((double)($1),(double)($2))"}},
    {"abs", {1, "std::fabs((double)($1))"}},
    {"floor", {1, "std::floor((double)($1))"}},
    {"ceil", {1, "std::ceil((double)($1))"}},
    {"round", {1, "std::round((double)($1))"}},
    {"trunc", {1, "std::trunc((double)($1))"}},
    {"frac", {1, "((double)($1)-std::trunc((double)($1)))", true}},
    {"sgn", {1, "(($1)>0?1:(($1)<0?-1:0))", true, Base::Int}},
    {"min", {2, "std::fmin((double)($1),(double)($2))"}},
    {"max", {2, "std::fmax((double)($1),(double)($2))"}},
    {"exp", {1, "std::exp((double)($1))"}},
    {"log", {1, "std::log((double)($1))"}},
    {"log10", {1, "std::log10((double)($1))"}},
    {"degtorad", {1, "(($1)*" TO_RADIANS ")"}},
    {"radtodeg", {1, "(($1)*" TO_DEGREES ")"}},
};

}  // namespace

const MathFunction* FindMath(std::string_view lowerName) {
    const auto found = functions.find(lowerName);
    return found == functions.end() ? nullptr : &found->second;
}

void WriteCall(Code& out, const MathFunction& function, const std::vector<Code>& arguments) {
    const std::string_view pattern = function.text;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] == '$')
            out += arguments[static_cast<std::size_t>(pattern[++i] - '1')];
        else
            out += pattern[i];
    }
}
