// What rides along with emitted lines: the user's comments.
#pragma once

#include "statements/state.h"

// The comment of the source line ("//...", or empty) goes to the next line that is emitted. Called where the last
// of the line's statements begins.
void PlaceComment(State& state);
// Writes a comment that no emitted line has taken on a line of its own.
void FlushComment(State& state);
