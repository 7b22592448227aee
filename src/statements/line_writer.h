// What rides along with emitted lines: the user's comments.
#pragma once

#include "statements/state.h"

// Keeps a comment ("//...", or empty) for the next line that is emitted.
void AddComment(State& state, const std::string& comment);
// Writes a comment that no emitted line has taken on a line of its own.
void FlushComment(State& state);
