// Class bodies: Type and Element blocks, emitted inline into the .cpp.
#pragma once

#include "statements/state.h"

// Type Name / Element Name
void TranslateTypeOpener(State& state, TokenSpan tokens);
// EndType: the instance tracking of a Type, the comparison of an Element, and the end of the body.
void TranslateEndType(State& state, TokenSpan tokens);
void TranslateEndElement(State& state, TokenSpan tokens);

// What the destructor of a Type does to take its object off the list.
std::string_view LeavingLines();

// Writes "private:" or "public:" when the access of the next member differs from the last one's.
// Called before every Field and Method of the body.
void EmitAccess(State& state);
