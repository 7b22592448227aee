// Default values of parameters.
#pragma once

#include "expressions/expression.h"

// The default value of one of the routine's parameters, as text for the place of the statement under way. Names in
// it mean what they mean at file level, also where a call stands among other variables. ItemCount is about the first
// argument.
Expr& TranslateDefault(const Routine& routine, const Parameter& parameter,
                       const Expr* firstArgument = nullptr);

// Its type; Void when it is none: a number, perhaps with a sign, a text, True, False, Null or a Const.
ValueType TypeOfDefault(const Routine& routine, const Parameter& parameter);
