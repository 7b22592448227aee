// What a build for the debugger of kv adds instead of the reports of a debug build, for include/kvdebugger.h.
#pragma once

#include "statements/state.h"

// Of the open routine: "Draw", "TPlayer\Hit", "TPlayer\constructor".
std::string DebuggerRoutineName(const State& state);

// A routine begins.
void BeginDebuggerRoutine();

// Before a statement: what has been declared since the last one, then its place where a run may stop there.
void EmitDebuggerHook(State& state, Keyword keyword);

// At the end of a class body: what lists its Fields.
void EmitFieldList(State& state, const ClassInfo& cls);

// After the main file's code: where statements stand, the Types and their objects, the Globals.
void EmitDebuggerTables(FileOutput& out, const std::vector<const ClassInfo*>& types);
