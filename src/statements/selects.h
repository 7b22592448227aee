// What other statements have to do with the Select around them.
#pragma once

#include "statements/state.h"

// What stands before the brace that closes the Select.
void FinishSelect(State& state, OpenSelect& select);

// To be called before every other statement: puts the case in braces ("{" is emitted) when a Local stands
// directly in it.
void PrepareInSelect(State& state, Keyword keyword);
