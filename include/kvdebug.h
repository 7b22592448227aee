// The debugger's side of a debug build: the eight calls that such a program makes.
//
// It keeps the stack of the routines entered and, unless told otherwise, does nothing else. With the environment
// variable KVDEBUG=trace it writes to the error stream each statement's file and line, each entry and exit, and
// the variables visible at each statement.
#ifndef KV_DEBUG_H
#define KV_DEBUG_H

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

namespace kvdebug {

// Names beyond this depth are only counted: a routine that never says Leave must not fill the memory.
const std::size_t namesKept = 10000;

struct State {
    std::vector<const char*> calls;  // names of the routines entered, outermost first
    std::size_t depth;               // routines entered, also those beyond namesKept
    void (*reportGlobals)();
    bool tracing;

    State() : depth(0), reportGlobals(nullptr), tracing(false) {}
};

inline State& TheState() {
    static State* state = new State();  // never destroyed: the program may still call at its very end
    return *state;
}

// The start of a line of the trace, after everything that the program itself has written so far.
inline void BeginTraceLine() {
    std::cout.flush();
    std::fputs("kvdebug: ", stderr);
    std::size_t indentation = TheState().depth < 40 ? TheState().depth : 40;
    for (; indentation > 1; --indentation) std::fputs("  ", stderr);
}

}  // namespace kvdebug

// Starts the debugger; a second call changes nothing.
inline void _kvDebugInit() {
    const char* mode = std::getenv("KVDEBUG");
    kvdebug::TheState().tracing = mode != nullptr && std::strcmp(mode, "trace") == 0;
}

// Takes the routine that reports every Global through _kvDebugVar.
inline void _kvDebugSetGlobalReporter(void (*reporter)()) { kvdebug::TheState().reportGlobals = reporter; }

// The program ends. May come before routines have left.
inline void _kvDebugShutdown() {
    kvdebug::State& state = kvdebug::TheState();
    if (state.tracing) {
        state.depth = 0;
        kvdebug::BeginTraceLine();
        std::fputs("end of program\n", stderr);
    }
    state.calls.clear();
    state.depth = 0;
    state.tracing = false;
}

// A routine is entered. The two pointers are kept free for a debugger that shows frames.
inline void _kvDebugEnter(const void*, const void*, const char* name) {
    kvdebug::State& state = kvdebug::TheState();
    ++state.depth;
    if (state.calls.size() < kvdebug::namesKept) state.calls.push_back(name);
    if (!state.tracing) return;
    kvdebug::BeginTraceLine();
    std::fprintf(stderr, "enter %s\n", name);
}

// The routine entered last is left.
inline void _kvDebugLeave() {
    kvdebug::State& state = kvdebug::TheState();
    if (state.depth == 0) return;
    if (state.tracing) {
        const bool named = state.depth == state.calls.size();
        kvdebug::BeginTraceLine();
        std::fprintf(stderr, "leave %s\n", named ? state.calls.back() : "");
    }
    if (state.depth == state.calls.size()) state.calls.pop_back();
    --state.depth;
}

// The statement of this line comes next.
inline void _kvDebugStmt(int line, const char* file) {
    if (!kvdebug::TheState().tracing) return;
    kvdebug::BeginTraceLine();
    std::fprintf(stderr, "%s:%d\n", file, line);
}

// A variable and its value as text. Kinds: 0 global, 1 local variable, 3 field of the current object.
inline void _kvDebugVar(const char* name, const char* type, const char* value, int kind) {
    if (!kvdebug::TheState().tracing) return;
    const char* where = kind == 0 ? "global " : kind == 3 ? "field " : "";
    kvdebug::BeginTraceLine();
    std::fprintf(stderr, "    %s%s : %s = %s\n", where, name, type, value != nullptr ? value : "null");
}

// Everything about the coming statement has been said: a debugger may stop here.
inline void _kvDebugPause() {
    kvdebug::State& state = kvdebug::TheState();
    if (state.tracing && state.reportGlobals != nullptr) state.reportGlobals();
}

#endif
