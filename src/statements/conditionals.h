// If, ElseIf, Else, EndIf; an If with its statements behind Then on the same line is closed there.
#pragma once

#include "statements/state.h"

void TranslateIf(State& state, TokenSpan tokens);
void TranslateElseIf(State& state, TokenSpan tokens);
void TranslateElse(State& state, TokenSpan tokens);
void TranslateEndIf(State& state, TokenSpan tokens);
