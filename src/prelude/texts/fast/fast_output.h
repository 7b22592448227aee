// Lines of output are written in larger pieces. Nothing of them is lost or late: they go out before input is
// read, before anything is written to std::cerr, and when the program ends, be it by a signal.
#include <csignal>
#include <cstdio>
#include <exception>
struct KVOutput {
    static std::terminate_handler& Terminate() { static std::terminate_handler before; return before; }
    static void EndByException() {  // the output stands in front of what is said about it
        std::cout.flush();
        std::fflush(stdout);
        Terminate()();
    }
    static void EndBySignal(int number) {
#if defined(KV_CONIO_H) && !defined(_WIN32)
        kvconio::RestoreTerminal(TCSANOW);
        struct pollfd output = { STDOUT_FILENO, POLLOUT, 0 };
        const bool taken = ::poll(&output, 1, 0) == 1 && output.revents == POLLOUT;  // nobody waits for a stuck reader
#else
        const bool taken = true;
#endif
        if(taken) { std::cout.flush(); std::fflush(stdout); }
        std::raise(number);  // the handler is gone by now
    }
    KVOutput() {
        Terminate() = std::set_terminate(EndByException);
#if defined(KV_CONIO_H) && !defined(_WIN32)
        static char room[65536];  // endless recursion leaves none on the stack
        stack_t own, present;
        std::memset(&own, 0, sizeof own);
        own.ss_sp = room;
        own.ss_size = sizeof room;
        if(sigaltstack(nullptr, &present) == 0 && (present.ss_flags & SS_DISABLE)) sigaltstack(&own, nullptr);
        const int ending[] = { SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGALRM,
                               SIGUSR1, SIGUSR2, SIGXCPU, SIGSYS };
        for(int number : ending) kvconio::SetHandler(number, EndBySignal, SA_RESETHAND | SA_NODEFER | SA_ONSTACK);
#else
        const int ending[] = { SIGINT, SIGTERM, SIGABRT, SIGSEGV, SIGFPE, SIGILL };
        for(int number : ending) if(std::signal(number, EndBySignal) != SIG_DFL) std::signal(number, SIG_DFL);
#endif
    }
};
static KVOutput __kvOutput;

