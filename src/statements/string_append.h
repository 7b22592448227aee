// Building Strings piece by piece under -fast.
#pragma once

#include <string>

// KVL_s = KVL_s + a + b; becomes (KVL_s += a) += b; which does not copy what s holds already.
// Takes the C++ texts of both sides, and whether the target is a variable of the routine, which nothing but
// its name can reach. Returns the statement, or an empty text when the value is no sum of that kind.
std::string AppendStatement(const std::string& target, const std::string& value, bool ownVariable);
