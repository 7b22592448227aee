// Signals that end the program, where the system is no Windows. A part of kvfailure.cpp.
#ifndef KV_FAILURE_SIGNALS_H
#define KV_FAILURE_SIGNALS_H

#include <cstdlib>
#include <cstring>
#include <exception>

#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include "kvfailure_causes.h"
#include "kvfailure_exceptions.h"

namespace {

char handlerStack[256 * 1024];  // endless recursion leaves no room on the usual one
extern "C" char** environ;
const char* stackTop = nullptr;

const int signals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

// Whether nearly all of the stack is in use, and the program wanted to use what lies below it.
bool IsStackEnd(const char* address) {
    struct rlimit limit;
    if (getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY || address > stackTop)
        return false;
    const unsigned long long depth = static_cast<unsigned long long>(stackTop - address);
    return depth > limit.rlim_cur / 8 * 7 && depth / 2 < limit.rlim_cur;
}

const char* TextOf(int number, const siginfo_t* info) {
    const char* address = static_cast<const char*>(info->si_addr);
    const bool bySystem = info->si_code > 0;  // otherwise somebody has sent it
    switch (number) {
        case SIGSEGV:
        case SIGBUS:
            if (!bySystem) return number == SIGSEGV ? "signal SIGSEGV" : "signal SIGBUS";
            if (number == SIGSEGV && IsStackEnd(address)) return deepText;
            if (info->si_code == SEGV_MAPERR && IsNull(address)) return nullText;
            return memoryText;
        case SIGFPE:
            return bySystem ? divisionText : "signal SIGFPE";
        case SIGILL:
            return !bySystem ? "signal SIGILL" : IsTrap(address) ? nullText : codeText;
        default:
            return abortText;
    }
}

// The program ends as it would have without this.
void EndBySignal(int number, siginfo_t* info, void*) {
    struct sigaction usual;
    std::memset(&usual, 0, sizeof usual);
    usual.sa_handler = SIG_DFL;
    sigaction(number, &usual, nullptr);
    if (__kvBeforeFailure != nullptr) __kvBeforeFailure();
    if (!said) {
        said = true;
        SayError(TextOf(number, info));
        SayPlaces();
        TellDebugger();
    }
    raise(number);  // comes when this one returns
}

// Before anything of the program runs. Whoever wants these signals takes them over later, or has done so by now.
__attribute__((constructor(101))) void Begin() {
    stackTop = reinterpret_cast<const char*>(environ);
    if (const char* given = std::getenv("KORVEL_FOLDER")) {
        if (std::strlen(given) < sizeof folder) std::strcpy(folder, given);
        unsetenv("KORVEL_FOLDER");  // for programs that this one starts it means nothing
    }
    std::set_terminate(EndByException);
    stack_t own, present;
    std::memset(&own, 0, sizeof own);
    own.ss_sp = handlerStack;
    own.ss_size = sizeof handlerStack;
    if (sigaltstack(nullptr, &present) == 0 && (present.ss_flags & SS_DISABLE)) sigaltstack(&own, nullptr);
    struct sigaction action, before;
    std::memset(&action, 0, sizeof action);
    action.sa_sigaction = EndBySignal;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (const int number : signals) {
        if (sigaction(number, nullptr, &before) == 0 && before.sa_handler == SIG_DFL)
            sigaction(number, &action, nullptr);
    }
}

}  // namespace

#endif
