// What a debug build adds to the translated code, for the runtime behind kvdebug.h.
#pragma once

#include <string>

#include "statements/state.h"

// Before an executable statement: its place, then the variables that are visible there.
void EmitStatementHook(State& state, Keyword keyword);

// Whether the Method may remove its own object, so that the Fields must not be reported any more.
bool MayLoseObject(const ClassInfo& cls, const Routine& method);
// Whether the objects of the class know the Methods that are under way.
bool WatchesPresence(const ClassInfo& cls);

// After the main file's code: the functions through which the debugger lists Types, reads the Fields
// of instances and the Globals.
void EmitTypeEnumeration(FileOutput& out);
