// Tells why a program made by kv failed, and where, on the error stream:
//
//     error: the program used an object that is Null
//       at game.kvl:12 in Method TPlayer\Move
//
// With KV_STACK defined all routines under way follow, the innermost first. Status and signal of the program stay what
// they are without this. Nothing happens, and nothing is slower, until something fails: signals and exceptions that end
// the program lead here, and so do run-time errors (kvfailure.h). The places come from the line tables of the C++
// compiler, whose #line directives lead to the source; libbacktrace, which comes with g++, reads them. Without it the
// message stands alone.
#include "kvfailure.h"

#include <cstdlib>

#include "kvfailure_exceptions.h"
#include "kvfailure_places.h"
#ifdef _WIN32
#include "kvfailure_windows.h"
#else
#include "kvfailure_signals.h"
#endif

extern "C" {
void (*__kvBeforeFailure)() = nullptr;
}

extern "C" void __kvReadPlaces(const char* path) { ReadPlaces(path); }

extern "C" void __kvWarn(const char* text) {
    if (!IsNewPlace(text)) return;
    SayWarning(text);
    SayPlaces();
}

extern "C" void __kvFail(int status) {
    SayPlaces();
    TellDebugger();
    std::exit(status);
}
