// Slips that show when several statements of a routine, or all of the program, are seen.
#pragma once

#include "base/token_span.h"

struct State;

// To be called for each statement before it is translated.
void WatchRoutine(const State& state, TokenSpan statement);

// Parts of it: loops that cannot end, items beyond the end of a Sequence, copies of items that are changed. They hear of the end of each routine.
void WatchLoops(TokenSpan statement);
bool InLoop();
void EndLoops();
void WatchSequences(TokenSpan statement);
void EndSequences();
void WatchCopies(TokenSpan statement);
void EndCopies();

// When all statements have been seen: what the main file declares and nothing uses.
void WarnOfUnused();
