// AutoCall and StopCall: timers by the name of their handler, as written.
#pragma once

#include "statements/state.h"

void TranslateAutoCall(State& state, TokenSpan tokens);
void TranslateStopCall(State& state, TokenSpan tokens);
