// Return, and what has to happen before a routine is left.
#pragma once

#include "statements/state.h"

void TranslateReturn(State& state, TokenSpan tokens);

// Emits the loops that free the objects of the routine's local arrays.
void EmitFreeLoops(State& state);

// True when the last line emitted is a Return of the routine's outermost block, so that nothing behind
// it is ever reached.
bool EndsInReturn(const State& state);
