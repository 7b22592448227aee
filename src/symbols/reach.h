// What a loop over the instances of a Type may bring about while it runs. Creating an instance moves the
// instance list, so such a loop has to walk by index.
#pragma once

#include <string>

#include "symbols/symbols.h"

// Whether the body of the loop that starts on this line may create instances of the class or re-order
// them, itself or through anything it may call. Errs on the side of yes. The first question reads all
// files of the program once.
bool LoopMayCreate(const std::string& file, int line, const ClassInfo& cls);

void ResetReach();
