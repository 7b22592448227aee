// The routines that translate the statements of the keywords. What each takes and gives stands above it in the file of
// its family.
#pragma once

#include "statements/state.h"

#define ROW(keyword, handler, place) void handler(State& state, TokenSpan tokens);
#include "statements/handlers.inc"
#undef ROW
