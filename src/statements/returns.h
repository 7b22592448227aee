// What has to happen before a routine is left.
#pragma once

#include "statements/state.h"

// Emits the loops that free the objects of the routine's local arrays.
void EmitFreeLoops(State& state);
