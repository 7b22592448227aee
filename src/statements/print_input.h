// Print and Input.
#pragma once

#include "statements/state.h"

void TranslatePrint(State& state, TokenSpan tokens);
void TranslateInput(State& state, TokenSpan tokens);
