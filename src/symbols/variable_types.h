// The types that Globals, Consts and Fields take from their values. Whoever looks a variable up (FindGlobal, FindField)
// finds it with its type, which is settled before anything is translated (collect/inference.h).
#pragma once

#include "base/report.h"
#include "symbols/symbols.h"

// Thrown, while types are being settled, where one is asked for that has to be settled before.
struct AwaitedType {
    Variable* variable = nullptr;
    const ClassInfo* owner = nullptr;  // Fields
};

// While one lives, types are being settled.
class AwaitTypes {
public:
    AwaitTypes();
    ~AwaitTypes();
    AwaitTypes(const AwaitTypes&) = delete;
    AwaitTypes& operator=(const AwaitTypes&) = delete;
};

// The variable is looked up as it is, whatever type it has.
void KeepType(const Variable& variable);
// Its value is wrong, which is told where somebody asks for the variable.
void KeepWrongValue(const Variable& variable, const Stop& stop);
