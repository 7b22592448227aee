// Loops over the slots of an array: those that construct and free the objects of an array of Elements,
// and those that copy an array for the caller.
#pragma once

#include <string>
#include <vector>

#include "expressions/code.h"
#include "symbols/symbols.h"

// All three return whole lines, each with its line end.

// new KVL_T() in every slot.
std::string FillLoops(const Variable& array);
// delete of every slot.
std::string FreeLoops(const Variable& array);
// A new array `copyName` made with __kvNewArray and filled from `source`, C++ text of an array of the
// type whose sizes are the given texts. Elements are copied as objects. At most maxPassedDimensions.
Code CopyLoops(const ValueType& type, const Code& source, const std::string& copyName,
               const std::vector<Code>& sizes);

// Arrays of more dimensions stay where they are declared: they are not handed back or taken over.
constexpr int maxPassedDimensions = 3;
