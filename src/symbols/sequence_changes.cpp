#include "symbols/sequence_changes.h"
bool RoutineMayChange(const std::string&, const ValueType&) { return true; }
bool TimersMayChange(const ValueType&) { return false; }
bool ConstructionMayChange(const ClassInfo&, const ValueType&) { return false; }
bool DestructorsMayChange(const ValueType&) { return false; }
