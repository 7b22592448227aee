// Headers of Functions and Methods: one reader for both passes.
#pragma once

#include <string>

#include "expressions/expression.h"
#include "lexer/token_span.h"
#include "symbols/symbols.h"

// Reads `Function name [: type] ( parameters )` or `Method ...`; the result type may also stand behind
// the list. Main keeps no result type, whatever is written. A malformed list and unknown types end the run.
Routine ParseRoutineHeader(TokenSpan tokens);

// Gives untyped parameters the type of their default value (Int without one) and checks that every
// default value is a constant of a fitting type.
void SettleParameters(Routine& routine);

// The C++ parameter list: "()" or "(int KVL_a, double KVL_b = 1.5)"; defaults only when asked for.
std::string ParameterText(const Routine& routine, bool withDefaults);

// The default value of one of the routine's parameters, as text for the place of the statement under way. Names in
// it mean what they mean at file level, also where a call stands among other variables.
Expr& TranslateDefault(const Routine& routine, const Parameter& parameter);

// "int KVL_Twice(int KVL_n);"
std::string PrototypeText(const Routine& routine);
