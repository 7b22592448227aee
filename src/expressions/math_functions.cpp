#include "expressions/math_functions.h"

#include <unordered_map>

namespace {

#define TO_RADIANS "0.017453292519943295"
#define TO_DEGREES "57.29577951308232"

struct MathFunction {
    int arguments;
    std::string_view text;  // $1 and $2 stand for the arguments
};

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
    {"frac", {1, "((double)($1)-std::trunc((double)($1)))"}},
    {"sgn", {1, "(($1)>0?1:(($1)<0?-1:0))"}},
    {"min", {2, "std::fmin((double)($1),(double)($2))"}},
    {"max", {2, "std::fmax((double)($1),(double)($2))"}},
    {"exp", {1, "std::exp((double)($1))"}},
    {"log", {1, "std::log((double)($1))"}},
    {"log10", {1, "std::log10((double)($1))"}},
    {"degtorad", {1, "(($1)*" TO_RADIANS ")"}},
    {"radtodeg", {1, "(($1)*" TO_DEGREES ")"}},
};

}  // namespace

int MathArgumentCount(std::string_view lowerName) {
    const auto found = functions.find(lowerName);
    return found == functions.end() ? -1 : found->second.arguments;
}

std::string MathText(std::string_view lowerName, const std::vector<std::string>& arguments) {
    const auto found = functions.find(lowerName);
    std::string text;
    if (found == functions.end()) return text;
    const std::string_view pattern = found->second.text;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != '$') {
            text += pattern[i];
            continue;
        }
        const auto argument = static_cast<std::size_t>(pattern[++i] - '1');
        if (argument < arguments.size()) text += arguments[argument];
    }
    return text;
}
