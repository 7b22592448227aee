// The heads and ends of Functions and Methods.
#pragma once

#include "statements/state.h"

// What a Return of the open routine has to do first: a destructor takes the object off its Type's list.
void EmitRoutineLeaving(State& state);
