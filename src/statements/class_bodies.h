// The bodies of Types and Elements, emitted inline into the .cpp.
#pragma once

#include "statements/state.h"

// What the destructor of a Type does to take its object off the list.
std::string_view LeavingLines();

// Writes "private:" or "public:" when the access of the next member differs from the last one's.
// Called before every Field and Method of the body.
void EmitAccess(State& state);
