// Remove: deletes an object.
#pragma once

#include "statements/state.h"

void TranslateRemove(State& state, TokenSpan tokens);
