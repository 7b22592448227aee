// Lines of output are written in larger pieces. Nothing of them is lost or late: they go out before input is
// read, before anything is written to std::cerr, and when the program ends, be it by a signal. Signals come at
// any moment, so what is taken in stands in plain memory that a handler may look at.
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <streambuf>
#ifdef _WIN32
#include <io.h>
#else
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>
#endif
class KVOutput : public std::streambuf {
    static const int room = 4096;
    char bytes[room];
    volatile std::sig_atomic_t used;     // bytes that wait, whole at every moment
    volatile std::sig_atomic_t writing;  // some of them are on their way, nobody knows how many
    bool byLine;                         // a terminal shows every line at once
    static KVOutput*& Own() { static KVOutput* own = nullptr; return own; }
    static std::terminate_handler& Terminate() { static std::terminate_handler before; return before; }

    static int WriteSome(const char* from, int count) {
#ifdef _WIN32
        return _write(1, from, (unsigned)count);
#else
        for(;;) {
            const int written = (int)::write(STDOUT_FILENO, from, (size_t)count);
            if(written >= 0 || (errno != EINTR && errno != EAGAIN)) return written;
            struct pollfd output = { STDOUT_FILENO, POLLOUT, 0 };
            if(errno == EAGAIN) ::poll(&output, 1, -1);
        }
#endif
    }
    bool WriteAll(const char* from, std::streamsize count) {
        while(count > 0) {
            const int written = WriteSome(from, count < 1048576 ? (int)count : 1048576);
            if(written <= 0) return false;
            from += written;
            count -= written;
        }
        return true;
    }
    bool Drain() {
        writing = 1;
        const bool done = WriteAll(bytes, used);
        used = 0;
        writing = 0;
        return done;
    }
    // Only calls that are allowed in a signal handler, and none that waits for a stuck reader.
    void DrainBySignal() {
        if(writing) return;
        writing = 1;
#ifdef _WIN32
        _write(1, bytes, (unsigned)used);
#else
        const int flags = ::fcntl(STDOUT_FILENO, F_GETFL);
        if(flags < 0 || ::fcntl(STDOUT_FILENO, F_SETFL, flags | O_NONBLOCK) < 0) return;
        for(int from = 0; from < used; ) {
            const int written = (int)::write(STDOUT_FILENO, bytes + from, (size_t)(used - from));
            if(written <= 0) break;
            from += written;
        }
        ::fcntl(STDOUT_FILENO, F_SETFL, flags);
#endif
    }
    static void EndBySignal(int number) {
#if defined(KV_CONIO_H) && !defined(_WIN32)
        kvconio::RestoreTerminal(TCSANOW);
#endif
        Own()->DrainBySignal();
        std::signal(number, SIG_DFL);
        std::raise(number);  // where signals wait for each other it comes when this one returns
    }
    static void EndByException() {  // the output stands in front of what is said about it
        std::cout.flush();
        Terminate()();
    }
    void HandleSignals() {
#ifdef _WIN32
        const int ending[] = { SIGINT, SIGTERM, SIGABRT, SIGSEGV, SIGFPE, SIGILL };
        for(int number : ending) if(std::signal(number, EndBySignal) != SIG_DFL) std::signal(number, SIG_DFL);
#else
        static char stack[65536];  // endless recursion leaves no room on the usual one
        stack_t own, present;
        std::memset(&own, 0, sizeof own);
        own.ss_sp = stack;
        own.ss_size = sizeof stack;
        if(sigaltstack(nullptr, &present) == 0 && (present.ss_flags & SS_DISABLE)) sigaltstack(&own, nullptr);
        struct sigaction end, before;
        std::memset(&end, 0, sizeof end);
        end.sa_handler = EndBySignal;
        end.sa_flags = SA_ONSTACK;
        sigfillset(&end.sa_mask);
        const int ending[] = { SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGALRM,
                               SIGUSR1, SIGUSR2, SIGXCPU, SIGSYS };
        for(int number : ending)
            if(sigaction(number, nullptr, &before) == 0 && before.sa_handler == SIG_DFL) sigaction(number, &end, nullptr);
#endif
    }

protected:
    std::streamsize xsputn(const char* from, std::streamsize count) override {
        if(count > room - used && !Drain()) return 0;
        if(count > room) {
            writing = 1;
            const bool done = WriteAll(from, count);
            writing = 0;
            return done ? count : 0;
        }
        std::memcpy(bytes + used, from, (size_t)count);
#ifdef __GNUC__
        __atomic_signal_fence(__ATOMIC_RELEASE);
#endif
        used = used + (int)count;
        return byLine && std::memchr(from, '\n', (size_t)count) && !Drain() ? 0 : count;
    }
    int_type overflow(int_type c) override {
        const char byte = traits_type::to_char_type(c);
        if(traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
        return xsputn(&byte, 1) == 1 ? c : traits_type::eof();
    }
    int sync() override { return Drain() ? 0 : -1; }

public:
    KVOutput() : used(0), writing(0), byLine(false) {
#ifdef _WIN32
        byLine = _isatty(1) != 0;
#else
        byLine = ::isatty(STDOUT_FILENO) != 0;
#endif
        Own() = this;
        std::cout.flush();  // included files may have written something before
        std::cout.rdbuf(this);
        Terminate() = std::set_terminate(EndByException);
        HandleSignals();
@BeforeFailure@    }
};
