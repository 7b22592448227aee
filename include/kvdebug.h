// The debugger's side of a debug build: the eight calls that such a program makes.
//
// It keeps the stack of the routines entered and, unless somebody listens, does nothing else: nothing is worked out for
// calls that nobody listens to. With the environment variable KVDEBUG=trace it writes to the error stream each
// statement's file and line, each entry and exit, and the variables visible at each statement. A debugger
// (kvdebugger.cpp), where one is linked and called for, listens instead.
#ifndef KV_DEBUG_H
#define KV_DEBUG_H

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>

#ifdef __GNUC__
#define KV_DEBUG_RARE __attribute__((noinline, cold))
#define KV_DEBUG_LISTENS __builtin_expect(kvdebug::TheState().listener != nullptr, false)
#else
#define KV_DEBUG_RARE
#define KV_DEBUG_LISTENS (kvdebug::TheState().listener != nullptr)
#endif

namespace kvdebug {

// Names beyond this depth are only counted: a routine that never says Leave must not fill the memory.
const std::size_t namesKept = 10000;

// Who is told what the program does.
struct Listener {
    void (*enter)(const char* name);  // the depth counts the routine already
    void (*leave)(const char* name);  // and does so still
    void (*statement)(int line, const char* file);
    void (*variable)(const char* name, const char* type, const char* value, int kind);
    void (*pause)();  // all about the coming statement has been said
    void (*end)();
};

// Zero at first, and never destroyed: the program may call before Main and at its very end.
struct State {
    const char* calls[namesKept];  // names of the routines entered, outermost first
    std::size_t depth;             // routines entered, also those beyond namesKept
    void (*reportGlobals)();
    const Listener* listener;
    void (*sleep)(double milliseconds);  // a debugger's, who may want the program meanwhile
};

// One for all files of a program.
template <class Unused>
struct Shared {
    static State state;
};
template <class Unused>
State Shared<Unused>::state;

inline State& TheState() { return Shared<void>::state; }

// The start of a line of the trace, after everything that the program itself has written so far.
inline void BeginTraceLine() {
    std::cout.flush();
    std::fputs("kvdebug: ", stderr);
    std::size_t indentation = TheState().depth < 40 ? TheState().depth : 40;
    for (; indentation > 1; --indentation) std::fputs("  ", stderr);
}

// ---- The trace ----

inline void TraceEnter(const char* name) {
    BeginTraceLine();
    std::fprintf(stderr, "enter %s\n", name);
}
inline void TraceLeave(const char* name) {
    BeginTraceLine();
    std::fprintf(stderr, "leave %s\n", name);
}
inline void TraceStatement(int line, const char* file) {
    BeginTraceLine();
    std::fprintf(stderr, "%s:%d\n", file, line);
}
inline void TraceVariable(const char* name, const char* type, const char* value, int kind) {
    const char* where = kind == 0 ? "global " : kind == 3 ? "field " : "";
    BeginTraceLine();
    std::fprintf(stderr, "    %s%s : %s = %s\n", where, name, type, value != nullptr ? value : "null");
}
inline void TraceGlobals() {
    if (TheState().reportGlobals != nullptr) TheState().reportGlobals();
}
inline void TraceEnd() {
    BeginTraceLine();
    std::fputs("end of program\n", stderr);
}
inline const Listener& Tracer() {
    static const Listener tracer = {TraceEnter,    TraceLeave,   TraceStatement,
                                    TraceVariable, TraceGlobals, TraceEnd};
    return tracer;
}

KV_DEBUG_RARE inline void TellEnter(const char* name) { TheState().listener->enter(name); }
KV_DEBUG_RARE inline void TellLeave() {
    const State& state = TheState();
    state.listener->leave(state.depth <= namesKept ? state.calls[state.depth - 1] : "");
}

}  // namespace kvdebug

// Starts the debugger; a second call changes nothing.
inline void _kvDebugInit() {
    const char* mode = std::getenv("KVDEBUG");
    const bool traces = mode != nullptr && std::strcmp(mode, "trace") == 0;
    if (traces && !KV_DEBUG_LISTENS) kvdebug::TheState().listener = &kvdebug::Tracer();
}

// Takes the routine that reports every Global through _kvDebugVar.
inline void _kvDebugSetGlobalReporter(void (*reporter)()) { kvdebug::TheState().reportGlobals = reporter; }

// The program ends. May come before routines have left.
inline void _kvDebugShutdown() {
    kvdebug::State& state = kvdebug::TheState();
    state.depth = 0;
    if (KV_DEBUG_LISTENS) state.listener->end();
    state.listener = nullptr;
}

// A routine is entered. The two pointers are kept free.
inline void _kvDebugEnter(const void*, const void*, const char* name) {
    kvdebug::State& state = kvdebug::TheState();
    if (state.depth < kvdebug::namesKept) state.calls[state.depth] = name;
    ++state.depth;
    if (KV_DEBUG_LISTENS) kvdebug::TellEnter(name);
}

// The routine entered last is left.
inline void _kvDebugLeave() {
    kvdebug::State& state = kvdebug::TheState();
    if (state.depth == 0) return;
    if (KV_DEBUG_LISTENS) kvdebug::TellLeave();
    --state.depth;
}

// The statement of this line comes next.
KV_DEBUG_RARE inline void _kvDebugStmt(int line, const char* file) {
    kvdebug::TheState().listener->statement(line, file);
}

// A variable and its value as text. Kinds: 0 global, 1 local variable, 3 field of the current object.
KV_DEBUG_RARE inline void _kvDebugVar(const char* name, const char* type, const char* value, int kind) {
    kvdebug::TheState().listener->variable(name, type, value, kind);
}

// Everything about the coming statement has been said: a debugger may stop here.
KV_DEBUG_RARE inline void _kvDebugPause() { kvdebug::TheState().listener->pause(); }

// Values are worked out for a listener only.
#define _kvDebugStmt(...) (KV_DEBUG_LISTENS ? _kvDebugStmt(__VA_ARGS__) : (void)0)
#define _kvDebugVar(...) (KV_DEBUG_LISTENS ? _kvDebugVar(__VA_ARGS__) : (void)0)
#define _kvDebugPause() (KV_DEBUG_LISTENS ? _kvDebugPause() : (void)0)

#endif
