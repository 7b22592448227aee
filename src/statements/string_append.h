// Building Strings piece by piece under -fast.
#pragma once

#include <string>

#include "expressions/expression.h"

// KVL_s = KVL_s + a + b; becomes (KVL_s += a) += b; which does not copy what s holds already. `item` tells that
// the target is the variable of a loop, which may stand for an item of something else. Returns the statement, or
// an empty text when the value is no such sum, or one whose parts could notice.
Code AppendStatement(const Expr& target, const Expr& value, bool item);
