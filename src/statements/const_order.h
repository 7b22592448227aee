// What C++ knows about a Const: whether its header has defined it before the line being written, and whether it
// is a constant there.
#pragma once

#include "base/token_span.h"

// False when the tokens name a Const or Global that the headers define only further down: of this file's
// later lines, or of a file whose header comes later. The main file's header is the last one.
bool UsesOnlyEarlierConsts(TokenSpan tokens);

// Whether an expression whose value is known here is a constant to C++, too. A checked division is none, nor is
// a Const that takes its value from one.
bool IsConstantToCpp(TokenSpan tokens);
