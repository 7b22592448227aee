// What the C++ of a program that kv makes calls when it fails. kvfailure.cpp says what happened, and where; kv compiles
// it once and links it to every such program. Where it cannot be had, KV_NO_FAILURES stands for that.
#ifndef KV_FAILURE_H
#define KV_FAILURE_H

#include <cstdlib>
#include <stdexcept>
#include <string>

// Called when all has been said, before the program ends: a debugger's (kvdebugger.cpp). The text is what was said of the
// failure, or empty where the program has said it. One for all objects of a program, whichever of them are linked.
template <class Unused>
struct __kvDebuggers {
    static void (*atFailure)(const char* text);
};
template <class Unused>
void (*__kvDebuggers<Unused>::atFailure)(const char* text) = nullptr;

#ifdef KV_NO_FAILURES

#include <cstdio>

static void (*__kvBeforeFailure)();
inline void __kvReadPlaces(const char*) {}
inline void __kvWarn(const char* text) { std::fprintf(stderr, "warning: %s\n", text); }
[[noreturn]] inline void __kvFail(int status) { std::exit(status); }

#else

extern "C" {
// Called before anything is said of a signal: terminal, output that waits. Only what a signal handler may do.
extern void (*__kvBeforeFailure)();
// Called first by programs of several units, whose lines count from places that stand in the file: "game.kvl@7 120" tells
// where the first line of "game.kvl@7" stands.
void __kvReadPlaces(const char* path);
// Behind the text of a run-time error: says where it happened and ends the program.
[[noreturn]] void __kvFail(int status);
// Tells of what is wrong but does not end the program, and where; each place once.
void __kvWarn(const char* text);
}

#endif

// ToInt and ToDouble of a text.
template <typename Number>
Number __kvNumber(const char* function, Number (*convert)(const std::string&), const std::string& text) {
    try {
        return convert(text);
    } catch (const std::invalid_argument&) {
        throw std::invalid_argument(std::string(function) + ": \"" + text + "\" is no number");
    } catch (const std::out_of_range&) {
        const double value = std::strtod(text.c_str(), nullptr);
        const char* what = value > -1 && value < 1 ? "\" is too small a number" : "\" is too large a number";
        throw std::out_of_range(std::string(function) + ": \"" + text + what);
    }
}
inline int __kvToInt(const std::string& text) {
    return __kvNumber<int>(
        "ToInt", [](const std::string& t) { return std::stoi(t); }, text);
}
inline double __kvToDouble(const std::string& text) {
    return __kvNumber<double>(
        "ToDouble", [](const std::string& t) { return std::stod(t); }, text);
}

#endif
