// The types that a DLL function can take and return, by their Korvel names.
#pragma once

#include <string>

#include "symbols/value_type.h"

// True for the basic types, void* and declared Types; Elements, arrays, Sequences and unknown names are
// refused.
bool CrossesBoundary(const std::string& korvelType);

// The C++ spelling inside the program: "std::string", "KVL_TPlayer*".
std::string InterfaceCppName(const std::string& korvelType);

// The C spelling at the boundary: "const char*" for String, "void*" for Types.
std::string BoundaryCppName(const std::string& korvelType, const std::string& cppType);

// What argument checks see.
ValueType InterfaceValueType(const std::string& korvelType);

bool IsStringType(const std::string& korvelType);
