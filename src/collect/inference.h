// The types that variables take from their values.
#pragma once

#include <string>

#include "symbols/symbols.h"

// Settles the type of a variable, and before it those of the variables that its value takes its type from. What is wrong
// with a value is kept for those who ask for the variable.
void SettleType(Variable& variable, const ClassInfo* owner);
// The same for the Global or Const of the name, if there is one.
void SettleTypeOf(const std::string& name);
