// Repeat, While and the closers that all loops share. For and EachSeq headers: for_loops.h.
#pragma once

#include "statements/state.h"

void TranslateRepeat(State& state, TokenSpan tokens);
void TranslateUntil(State& state, TokenSpan tokens);
void TranslateForever(State& state, TokenSpan tokens);
void TranslateWhile(State& state, TokenSpan tokens);

// Wend, Next, NextSeq close whatever loop is on top: a mismatched closer is accepted.
void TranslateWend(State& state, TokenSpan tokens);
void TranslateNext(State& state, TokenSpan tokens);
