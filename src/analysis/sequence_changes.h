// What code that runs within a loop over a Sequence may do to Sequences. Adding, removing or moving items
// would break the loop's iterators, so such a loop has to run by a walk that knows about the changes.
#pragma once

#include <string>
#include <vector>

#include "symbols/symbols.h"

// Whether the routines of the name, the handlers of timers, making an object of the class or removing any
// object may change a Sequence of such items, themselves or through anything they may call. All err on the
// side of yes. The first question reads all files of the program once.
bool RoutineMayChange(const std::string& name, const ValueType& item);
bool TimersMayChange(const ValueType& item);
bool ConstructionMayChange(const ClassInfo& cls, const ValueType& item);
bool DestructorsMayChange(const ValueType& item);

// The types of the Sequences in an Element and in those that it holds.
std::vector<ValueType> HeldSequences(const ClassInfo& element);
