// What rides along with emitted lines: the user's comments, the marks that lead back to the source.
#pragma once

#include "lexer/cut_file.h"
#include "statements/state.h"

// Writes the mark (prelude/line_marks.h) that the next line needs, if any: lines do so themselves. Behind it stands the
// first byte of the next line.
void MarkLine(State& state);

// A line of inline C++ as it stands.
void EmitInlineCpp(State& state, const InlineLine& inlined);

// The comment of the source line ("//...", or empty) goes to the next line that is emitted. Called where the last
// of the line's statements begins.
void PlaceComment(State& state);
// Writes a comment that no emitted line has taken on a line of its own.
void FlushComment(State& state);
