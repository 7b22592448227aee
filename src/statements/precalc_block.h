// PreCalc blocks in the second pass: the lines are collected, evaluated at the block's end and written
// into the header as an initialised table.
#pragma once

#include "statements/state.h"

// A statement that opens a block or stands inside one.
void TranslatePreCalc(State& state, TokenSpan tokens);
// A line of inline C++ inside of one, which may hold none.
void NoteInlineInPreCalc(State& state, int line);
