// Statements that no keyword claims: assignments and calls.
#pragma once

#include "statements/state.h"

// `target = value`, a call with or without parentheses, or the creation of an object. Emits one line.
// Anything else ends the run.
void TranslateAssignmentOrCall(State& state, TokenSpan tokens);

// Ends the run for `name = Null` where the variable is an Element; every other statement passes.
void CheckNullAssignment(TokenSpan tokens);
