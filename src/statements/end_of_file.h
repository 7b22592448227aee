// Blocks that are still open when a file ends.
#pragma once

#include "statements/state.h"

// Says which block is open and where it starts, and ends the run; returns when all are closed.
void CheckBlocksClosed(const State& state);
