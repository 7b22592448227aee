// What a piece of the program may bring about while it runs. Creating an instance moves the instance list, so a
// loop over it has to walk by index; a Method may remove its own object.
#pragma once

#include <string>

#include "symbols/symbols.h"

// Whether the body of the loop that starts on this line may create instances of the class or re-order
// them, itself or through anything it may call. Errs on the side of yes. The first question reads all
// files of the program once.
bool LoopMayCreate(const std::string& file, int line, const ClassInfo& cls);

// Whether such a question, and one about effects, will read no file any more.
bool IsGraphBuilt();

// Frees the largest part of the graph, when no such questions will be asked any more.
void ForgetGraphNodes();

// Whether a Function or Method of this name may remove an object of some Type, itself, through anything it may
// call or through a timer. Errs on the side of yes.
bool RoutineMayRemove(const std::string& name);
