// Whether C++ knows a Const where its name is written.
#pragma once

#include "expressions/tree.h"

// False when the expression names a Const or Global that the headers define only further down: of this file's
// later lines, or of a file whose header comes later. The main file's header is the last one.
bool UsesOnlyEarlierConsts(const Expr& expr);
