// Blocks that are still open when a file ends.
#pragma once

#include <vector>

#include "base/report.h"
#include "statements/state.h"

// Says which block is open and where it starts, and ends the run; returns when all are closed.
void CheckBlocksClosed(const State& state);
// The same for a file that stands in the open routine.
void CheckPartClosed(const State& state);

// The reports of a Type or Element, and of a Method, without their closers.
[[noreturn]] void FailUnclosedType(const State& state);
[[noreturn]] void FailUnclosedMethod(const std::string& name, int line);

// "Extern block starting at line 3 is missing 'EndExtern'" when an Extern is open that is never closed; else empty.
// What stands in such a block may be meant to follow it.
std::vector<UnclosedBlock> UnclosedExtern(const State& state);

// The routine, or else the Type or Element, that is open; nothing where that began in another file.
Elsewhere OpenAround(const State& state);
