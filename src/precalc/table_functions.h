// The math functions as PreCalc blocks evaluate them: the same names and meanings as at run time.
#pragma once

#include <string_view>

struct TableFunction {
    double (*one)(double) = nullptr;          // for one argument
    double (*two)(double, double) = nullptr;  // for two
    double value = 0;                         // for none
};

constexpr double tablePi = 3.141592653589793;

// Null when PreCalc cannot evaluate the function of this lower-case name.
const TableFunction* FindTableFunction(std::string_view lowerName);
