// Select, Case, Default, EndSelect.
#pragma once

#include "statements/state.h"

void TranslateSelect(State& state, TokenSpan tokens);
void TranslateCase(State& state, TokenSpan tokens);
void TranslateDefault(State& state, TokenSpan tokens);
void TranslateEndSelect(State& state, TokenSpan tokens);

// What stands before the brace that closes the Select.
void FinishSelect(State& state, OpenSelect& select);

// To be called before every other statement: puts the case in braces ("{" is emitted) when a Local stands
// directly in it.
void PrepareInSelect(State& state, Keyword keyword);
