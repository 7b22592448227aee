// The math functions of the language: which names they have and what C++ they become.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Number of arguments of the function with this lower-case name; -1 when there is none.
int MathArgumentCount(std::string_view lowerName);

// The C++ call with the translated arguments filled in; empty for a name that is no math function.
// Every result is a double, except that of sgn, which is an int.
std::string MathText(std::string_view lowerName, const std::vector<std::string>& arguments);
