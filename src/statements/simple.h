// Statements of one word: End, Exit, Continue, public, private, Extern, EndExtern.
#pragma once

#include "statements/state.h"

void TranslateEnd(State& state, TokenSpan tokens);
void TranslateExit(State& state, TokenSpan tokens);
void TranslateContinue(State& state, TokenSpan tokens);

// public, private: the access of the members that follow; nothing is emitted.
void TranslateAccess(State& state, TokenSpan tokens);

// The declarations inside an Extern block belong to the first pass; nothing is emitted.
void TranslateExtern(State& state, TokenSpan tokens);
void TranslateEndExtern(State& state, TokenSpan tokens);
