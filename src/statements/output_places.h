// Where outputs may go: not over a source, not over somebody else's file outside the output folder, and not under
// a name that C++ cannot include.
#pragma once

#include "prelude/output.h"

// Ends the run when one of these would happen to the outputs of the file, or of a source that they lie on.
void CheckOutputPlaces(const FileOutput& out);
