// Blocks that are still open when a file ends.
#pragma once

#include "statements/state.h"

// Says which block is open and where it starts, and ends the run; returns when all are closed.
void CheckBlocksClosed(const State& state);

// The reports of a Type or Element, and of a Method, without their closers.
[[noreturn]] void FailUnclosedType(const std::string& name, int line);
[[noreturn]] void FailUnclosedMethod(const std::string& name, int line);

// Prints a line for each routine and class that is open where another one begins, innermost first, as a
// hint beside the report that follows. A Method may follow in an open Type.
void SayOpenBlocks(const State& state, bool methodMayFollow);

// The same hint for an open Extern block, in which a statement means that the block was to end before.
void SayOpenExtern(const State& state);
