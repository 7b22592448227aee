// Function, EndFunction, Method, EndMethod.
#pragma once

#include "statements/state.h"

void TranslateFunction(State& state, TokenSpan tokens);
void TranslateEndFunction(State& state, TokenSpan tokens);
void TranslateMethod(State& state, TokenSpan tokens);
void TranslateEndMethod(State& state, TokenSpan tokens);

// What a Return of the open routine has to do first: a destructor takes the object off its Type's list.
void EmitRoutineLeaving(State& state);
