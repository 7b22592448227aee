// Headers of Functions and Methods: one reader for both passes.
#pragma once

#include <string>

#include "base/token_span.h"
#include "symbols/symbols.h"

// Reads `Function name [: type] ( parameters )` or `Method ...`; the result type may also stand behind
// the list. Main keeps no result type, whatever is written. A malformed list and unknown types end the run.
Routine ParseRoutineHeader(TokenSpan tokens);

// Gives untyped parameters the type of their default value (Int without one) and checks that every
// default value is a constant of a fitting type.
void SettleParameters(Routine& routine);

// The C++ parameter list: "()" or "(int KVL_a, double KVL_b = 1.5)"; defaults only when asked for.
std::string ParameterText(const Routine& routine, bool withDefaults);

// "int KVL_Twice(int KVL_n);"
std::string PrototypeText(const Routine& routine);
