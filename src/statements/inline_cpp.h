// InlineCpp blocks: C++ lines that reach the .cpp as they stand.
#pragma once

#include <functional>
#include <string>

#include "statements/state.h"

// Copies lines up to EndInlineCpp. `next` yields the next physical line, false at the end of the file,
// which ends the run.
void CopyInlineCpp(State& state, const std::function<bool(std::string&)>& next);
