#include "precalc/table_functions.h"

#include <cmath>
#include <unordered_map>

namespace {

constexpr double toRadians = 0.017453292519943295;
constexpr double toDegrees = 57.29577951308232;

TableFunction One(double (*function)(double)) { return {function, nullptr, 0}; }
TableFunction Two(double (*function)(double, double)) { return {nullptr, function, 0}; }

const std::unordered_map<std::string_view, TableFunction> functions = {
    {"pi", {nullptr, nullptr, tablePi}},
    {"sin", One([](double x) { return std::sin(x * toRadians); })},
    {"cos", One([](double x) { return std::cos(x * toRadians); })},
    {"tan", One([](double x) { return std::tan(x * toRadians); })},
    {"asin", One([](double x) { return std::asin(x) * toDegrees; })},
    {"acos", One([](double x) { return std::acos(x) * toDegrees; })},
    {"atan", One([](double x) { return std::atan(x) * toDegrees; })},
    {"atan2", Two([](double a, double b) { return std::atan2(a, b) * toDegrees; })},
    {"sqrt", One([](double x) { return std::sqrt(x); })},
    {"cbrt", One([](double x) { return std::cbrt(x); })},
    {"pow", Two([](double a, double b) { return std::pow(a, b); })},
    {"abs", One([](double x) { return std::fabs(x); })},
    {"floor", One([](double x) { return std::floor(x); })},
    {"ceil", One([](double x) { return std::ceil(x); })},
    {"round", One([](double x) { return std::round(x); })},
    {"trunc", One([](double x) { return std::trunc(x); })},
    {"frac", One([](double x) { return x - std::trunc(x); })},
    {"sgn", One([](double x) { return x > 0   ? 1.0
                                      : x < 0 ? -1.0
                                              : 0.0; })},
    {"min", Two([](double a, double b) { return std::fmin(a, b); })},
    {"max", Two([](double a, double b) { return std::fmax(a, b); })},
    {"exp", One([](double x) { return std::exp(x); })},
    {"log", One([](double x) { return std::log(x); })},
    {"log10", One([](double x) { return std::log10(x); })},
    {"degtorad", One([](double x) { return x * toRadians; })},
    {"radtodeg", One([](double x) { return x * toDegrees; })},
};

}  // namespace

const TableFunction* FindTableFunction(std::string_view lowerName) {
    const auto found = functions.find(lowerName);
    return found == functions.end() ? nullptr : &found->second;
}
