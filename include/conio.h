// The console calls behind GetKey: _kbhit, _getch, _getche and _putch.
//
// Windows has them in its own <conio.h>, which is used there. Elsewhere they are built here on termios: the
// terminal leaves line mode at the first question for a key, and returns to it before std::cin is read, when
// the program ends, when a signal ends it and while it is stopped (Ctrl-Z).
//
// Keys have the codes of the original console: Enter is 13, Backspace 8, Esc 27; arrow and function keys come as
// two codes, 224 or 0 first (Up is 224, 72; F1 is 0, 59). Ctrl-C stays a signal. Other text arrives byte by byte
// as the terminal sends it.
//
// Keys may also come from a pipe or a file. At the end of the input no key is ever waiting: _kbhit returns 0 and
// _getch returns -1 (EOF).
#ifndef KV_CONIO_H
#define KV_CONIO_H

#if defined(_MSC_VER) && !defined(__GNUC__)

#include <../ucrt/conio.h>

#elif defined(_WIN32)

#pragma GCC system_header
#include_next <conio.h>

#else

#include <poll.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <streambuf>

namespace kvconio {

// ---- Decoding: bytes of the terminal to key codes ------------------------------------------------------------

// One key at the front of the bytes read so far: how many bytes it takes (0: more are needed to tell) and its
// codes. A sequence that stands for no key of the console has the codes -1, -1; a plain key has no second code.
struct Key {
    std::size_t size;
    int first;
    int second;
};

inline Key MakeKey(std::size_t size, int first, int second = -1) {
    Key key = {size, first, second};
    return key;
}

// The key of a sequence's last letter (ESC [ A, ESC O P), without its size.
inline Key KeyOfLetter(char letter) {
    switch (letter) {
        case 'A':
            return MakeKey(0, 224, 72);  // Up
        case 'B':
            return MakeKey(0, 224, 80);  // Down
        case 'C':
            return MakeKey(0, 224, 77);  // Right
        case 'D':
            return MakeKey(0, 224, 75);  // Left
        case 'H':
            return MakeKey(0, 224, 71);  // Home
        case 'F':
            return MakeKey(0, 224, 79);  // End
        case 'P':
            return MakeKey(0, 0, 59);  // F1
        case 'Q':
            return MakeKey(0, 0, 60);
        case 'R':
            return MakeKey(0, 0, 61);
        case 'S':
            return MakeKey(0, 0, 62);
        case 'Z':
            return MakeKey(0, 0, 15);  // Shift-Tab
        case 'M':
            return MakeKey(0, 13);  // Enter of the number block
        default:
            return MakeKey(0, -1);
    }
}

// The key of a numbered sequence (ESC [ 5 ~), without its size.
inline Key KeyOfNumber(int number) {
    switch (number) {
        case 1:
        case 7:
            return MakeKey(0, 224, 71);  // Home
        case 2:
            return MakeKey(0, 224, 82);  // Ins
        case 3:
            return MakeKey(0, 224, 83);  // Del
        case 4:
        case 8:
            return MakeKey(0, 224, 79);  // End
        case 5:
            return MakeKey(0, 224, 73);  // Page up
        case 6:
            return MakeKey(0, 224, 81);  // Page down
        case 23:
            return MakeKey(0, 224, 133);  // F11
        case 24:
            return MakeKey(0, 224, 134);  // F12
        default:
            break;
    }
    if (number >= 11 && number <= 15) return MakeKey(0, 0, 59 + number - 11);  // F1 to F5
    if (number >= 17 && number <= 21) return MakeKey(0, 0, 64 + number - 17);  // F6 to F10
    return MakeKey(0, -1);
}

// "ESC [" digits and other parameters, then one last character; the Linux console has "ESC [ [ A" for F1.
inline Key DecodeBracketSequence(const char* bytes, std::size_t size) {
    if (size > 2 && bytes[2] == '[') {
        if (size < 4) return MakeKey(0, -1);
        const bool isFunctionKey = bytes[3] >= 'A' && bytes[3] <= 'E';
        return isFunctionKey ? MakeKey(4, 0, 59 + bytes[3] - 'A') : MakeKey(4, -1);
    }
    int number = 0;
    bool inNumber = true;
    for (std::size_t at = 2; at < size; ++at) {
        const char c = bytes[at];
        if (c >= '0' && c <= '9') {
            if (inNumber && number < 1000) number = number * 10 + (c - '0');
        } else if (c >= 0x20 && c < 0x40) {
            inNumber = false;  // what follows tells of Shift, Ctrl and Alt; the key is the same
        } else {
            Key key = c == '~' ? KeyOfNumber(number) : KeyOfLetter(c);
            if (c == 'M') key = MakeKey(0, -1);
            key.size = at + 1;
            return key;
        }
    }
    return MakeKey(0, -1);
}

// Decodes the key at the front of `bytes`. `complete` says that no more bytes will follow soon, so that an
// unfinished sequence is taken for single keys: a lone ESC is the Esc key.
inline Key DecodeKey(const char* bytes, std::size_t size, bool complete) {
    if (size == 0) return MakeKey(0, -1);
    const int byte = static_cast<unsigned char>(bytes[0]);
    if (byte == 27) {
        Key key = MakeKey(0, -1);
        if (size > 1 && bytes[1] == '[') {
            key = DecodeBracketSequence(bytes, size);
        } else if (size > 2 && bytes[1] == 'O') {
            key = KeyOfLetter(bytes[2]);
            key.size = key.first < 0 ? 0 : 3;
            if (key.size == 0) return MakeKey(1, 27);
        } else if (size > 1 && bytes[1] != 'O') {
            return MakeKey(1, 27);
        }
        if (key.size == 0 && complete) return MakeKey(1, 27);
        return key;
    }
    if (byte == '\n') return MakeKey(1, 13);
    if (byte == 127) return MakeKey(1, 8);
    if (byte == 0) return MakeKey(1, 0, 3);  // Ctrl-Space: a bare 0 would announce a second code
    if (byte == 224) {
        // The first byte of a three-byte character reads like the mark of an arrow key: the character becomes "?".
        if (size < 3 && !complete) return MakeKey(0, -1);
        std::size_t length = 1;
        while (length < 3 && length < size && (bytes[length] & 0xC0) == 0x80) ++length;
        return MakeKey(length, '?');
    }
    return MakeKey(1, byte);
}

// ---- State ---------------------------------------------------------------------------------------------------

const std::size_t readAheadSize = 64;
const int sequenceTimeout = 30;  // milliseconds in which the rest of a key's sequence arrives

struct State {
    bool examined;              // `isTerminal` is known
    bool isTerminal;            // standard input is a terminal
    volatile sig_atomic_t raw;  // the terminal delivers single keys, unechoed
    bool haveModes;             // `lineModes` holds the modes in which the program found the terminal
    bool atEnd;                 // the input has ended
    int secondCode;             // second code of an arrow or function key still to be delivered, or -1
    char bytes[readAheadSize];  // read but not yet taken as keys
    std::size_t size;
    struct termios lineModes;
    int aside;       // with `hear`: a descriptor that is listened to while the program waits for input
    void (*hear)();  // nobody: null
};

inline State& TheState() {
    static State state = State();
    return state;
}

inline bool IsForeground() { return tcgetpgrp(STDIN_FILENO) == getpgrp(); }

// ---- Line mode and key mode ----------------------------------------------------------------------------------

// Back to the modes in which the program found the terminal. Safe in signal handlers. A background process must
// leave the terminal alone: it would be stopped for touching it.
inline void RestoreTerminal(int action) {
    State& state = TheState();
    if (!state.raw) return;
    state.raw = 0;
    const int savedErrno = errno;
    if (IsForeground()) tcsetattr(STDIN_FILENO, action, &state.lineModes);
    errno = savedErrno;
}

inline void RestoreAtExit() { RestoreTerminal(TCSANOW); }

// Signals that end the program: terminal first, then the signal does what it always does.
inline void EndBySignal(int number) {
    RestoreTerminal(TCSANOW);
    raise(number);  // the handler is gone by now (SA_RESETHAND)
}

inline void SetHandler(int number, void (*handler)(int), int flags) {
    struct sigaction current;
    if (sigaction(number, nullptr, &current) != 0 || current.sa_handler != SIG_DFL) return;
    struct sigaction action;
    std::memset(&action, 0, sizeof action);
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

// Ctrl-Z: the shell gets its terminal back, and the next question for a key takes it again.
inline void StopBySignal(int number) {
    RestoreTerminal(TCSANOW);
    const int savedErrno = errno;
    struct sigaction handling;
    struct sigaction standard;
    std::memset(&standard, 0, sizeof standard);
    standard.sa_handler = SIG_DFL;
    sigemptyset(&standard.sa_mask);
    sigaction(number, &standard, &handling);
    raise(number);
    sigset_t own;
    sigset_t before;
    sigemptyset(&own);
    sigaddset(&own, number);
    sigprocmask(SIG_UNBLOCK, &own, &before);  // stops here
    sigprocmask(SIG_SETMASK, &before, nullptr);
    sigaction(number, &handling, nullptr);
    errno = savedErrno;
}

// After a stop that could not be caught the shell has set modes of its own.
inline void ContinueBySignal(int) { TheState().raw = 0; }

inline void InstallHandlers() {
    static bool installed = false;
    if (installed) return;
    installed = true;
    std::atexit(RestoreAtExit);
#ifdef KV_FAILURE_H
    if (__kvBeforeFailure == nullptr) __kvBeforeFailure = RestoreAtExit;
#endif

    // Endless recursion leaves no room on the stack for a handler.
    static char handlerStack[65536];
    stack_t stack;
    std::memset(&stack, 0, sizeof stack);
    stack_t present;
    if (sigaltstack(nullptr, &present) == 0 && (present.ss_flags & SS_DISABLE)) {
        stack.ss_sp = handlerStack;
        stack.ss_size = sizeof handlerStack;
        sigaltstack(&stack, nullptr);
    }
    const int ending[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGABRT, SIGSEGV,
                          SIGBUS, SIGFPE,  SIGILL, SIGPIPE, SIGALRM};
    for (std::size_t i = 0; i < sizeof ending / sizeof ending[0]; ++i) {
        SetHandler(ending[i], EndBySignal, SA_RESETHAND | SA_NODEFER | SA_ONSTACK);
    }
    SetHandler(SIGTSTP, StopBySignal, 0);
    SetHandler(SIGCONT, ContinueBySignal, 0);
}

// Single keys, unechoed; Ctrl-C and Ctrl-Z keep their meaning. Returns false where no keys can be had now:
// the program runs in the background.
inline bool EnterKeyMode() {
    State& state = TheState();
    if (state.raw) return true;
    if (!IsForeground()) return false;
    if (!state.haveModes) {
        if (tcgetattr(STDIN_FILENO, &state.lineModes) != 0) return false;
        state.haveModes = true;
        InstallHandlers();
    }
    struct termios modes = state.lineModes;
    modes.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | IEXTEN);
    modes.c_iflag &= ~static_cast<tcflag_t>(ICRNL | INLCR | IGNCR | IXON);
    modes.c_cc[VMIN] = 1;
    modes.c_cc[VTIME] = 0;
    state.raw = 1;  // before the change: a signal in between must undo it
    if (tcsetattr(STDIN_FILENO, TCSANOW, &modes) == 0) return true;
    state.raw = 0;
    return false;
}

// Bytes that the C library has read ahead of std::cin, which a look at the descriptor does not show.
inline bool LibraryHasBytes() {
#if defined(__GLIBC__)
    return stdin->_IO_read_ptr < stdin->_IO_read_end;
#elif defined(__APPLE__) || defined(__FreeBSD__)
    return stdin->_r > 0;
#else
    return false;
#endif
}

// Waits at most `timeout` milliseconds (-1: as long as it takes) for standard input; false when nothing came.
inline bool WaitForInput(int timeout) {
    const State& state = TheState();
    const bool listens = state.hear != nullptr && timeout != 0;
    for (;;) {
        struct pollfd all[] = {{STDIN_FILENO, POLLIN, 0}, {state.aside, POLLIN, 0}};
        const int ready = poll(all, listens ? 2 : 1, timeout);
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return false;
        if (!listens || all[1].revents == 0) return true;
        state.hear();
    }
}

// ---- std::cin beside keys ------------------------------------------------------------------------------------

// Stands before std::cin's own buffer. Whoever reads lines finds the terminal in line mode, echoing; keys that
// were pressed unseen before are dropped. From a pipe, bytes looked at for a key are read first.
class LineInput : public std::streambuf {
public:
    explicit LineInput(std::streambuf* own) : own_(own) {}

    std::streambuf* Own() const { return own_; }

protected:
    int_type underflow() override {
        Prepare();
        State& state = TheState();
        if (state.size > 0) return traits_type::to_int_type(state.bytes[0]);
        return own_->sgetc();
    }

    int_type uflow() override {
        Prepare();
        State& state = TheState();
        if (state.size == 0) return own_->sbumpc();
        const char first = state.bytes[0];
        --state.size;
        std::memmove(state.bytes, state.bytes + 1, state.size);
        return traits_type::to_int_type(first);
    }

    int_type pbackfail(int_type c) override {
        return traits_type::eq_int_type(c, traits_type::eof())
                   ? own_->sungetc()
                   : own_->sputbackc(traits_type::to_char_type(c));
    }

    std::streamsize showmanyc() override {
        const std::streamsize waiting = own_->in_avail();
        return waiting > 0 ? waiting + static_cast<std::streamsize>(TheState().size) : waiting;
    }

    int sync() override { return own_->pubsync(); }

private:
    void Prepare() const {
        State& state = TheState();
        if (state.raw) {
            RestoreTerminal(TCSAFLUSH);
            state.size = 0;
            state.secondCode = -1;
        }
        const bool waits = state.size == 0 && !LibraryHasBytes() && own_->in_avail() <= 0;
        if (state.hear != nullptr && waits) WaitForInput(-1);
    }

    std::streambuf* own_;
};

// Puts LineInput before std::cin and returns std::cin's own buffer. Looks again at every call, since a program
// may exchange the buffer. Never destroyed: std::cin is used until the very end.
inline std::streambuf* OwnInput() {
    static LineInput* gate = nullptr;
    if (gate == nullptr || std::cin.rdbuf() != gate) {
        gate = new LineInput(std::cin.rdbuf());
        const std::ios_base::iostate condition = std::cin.rdstate();
        std::cin.rdbuf(gate);
        std::cin.clear(condition);
    }
    return gate->Own();
}

// ---- Reading keys --------------------------------------------------------------------------------------------

// Adds one byte to those read ahead. Waits at most `timeout` milliseconds (-1: as long as it takes); false when
// none came in time or the input has ended.
inline bool ReadByte(int timeout) {
    State& state = TheState();
    if (state.atEnd || state.size == readAheadSize) return false;
    std::streambuf* own = OwnInput();
    if (!state.isTerminal && (LibraryHasBytes() || own->in_avail() > 0)) {
        const int byte = own->sbumpc();
        if (byte == EOF) return false;
        state.bytes[state.size++] = static_cast<char>(byte);
        return true;
    }
    for (;;) {
        if (state.isTerminal && !EnterKeyMode() && timeout >= 0) return false;
        if (!WaitForInput(timeout)) return false;
        char byte = 0;
        const ssize_t count = read(STDIN_FILENO, &byte, 1);
        if (count == 1) {
            state.bytes[state.size++] = byte;
            return true;
        }
        if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
            if (timeout == 0) return false;
            continue;
        }
        state.atEnd = true;
        return false;
    }
}

inline void DropBytes(std::size_t count) {
    State& state = TheState();
    state.size -= count;
    std::memmove(state.bytes, state.bytes + count, state.size);
}

// The next key at the front of the bytes, still there; its size is 0 when none came. Waits only if told to.
inline Key FrontKey(bool wait) {
    State& state = TheState();
    if (!state.examined) {
        state.examined = true;
        state.isTerminal = isatty(STDIN_FILENO) != 0;
        state.secondCode = -1;
    }
    OwnInput();
    std::cout.flush();  // what the program has to say stands on the screen when it asks for a key
    if (state.isTerminal && !EnterKeyMode() && !wait) return MakeKey(0, -1);
    for (;;) {
        if (state.size == 0 && !ReadByte(wait ? -1 : 0)) return MakeKey(0, -1);
        Key key = DecodeKey(state.bytes, state.size, false);
        while (key.size == 0) {
            const bool more = ReadByte(sequenceTimeout);
            key = DecodeKey(state.bytes, state.size, !more);
        }
        if (key.first >= 0) return key;
        DropBytes(key.size);  // a sequence that is no key: a focus report, a mouse click
    }
}

inline bool SecondCodeWaits() { return TheState().examined && TheState().secondCode >= 0; }

}  // namespace kvconio

// What was printed is seen before a key is looked for.

// True (1) when a key waits for _getch. Never waits itself.
inline int _kbhit() {
    std::cout.flush();
    return kvconio::SecondCodeWaits() || kvconio::FrontKey(false).size > 0 ? 1 : 0;
}

// Waits for a key and returns its code, unechoed; -1 at the end of the input.
inline int _getch() {
    kvconio::State& state = kvconio::TheState();
    if (kvconio::SecondCodeWaits()) {
        const int second = state.secondCode;
        state.secondCode = -1;
        return second;
    }
    std::cout.flush();
    const kvconio::Key key = kvconio::FrontKey(true);
    if (key.size == 0) return EOF;
    kvconio::DropBytes(key.size);
    state.secondCode = key.second;
    return key.first;
}

// Writes one character at once and returns it.
inline int _putch(int character) {
    std::cout.put(static_cast<char>(character)).flush();
    return character;
}

// _getch, showing the key.
inline int _getche() {
    const int code = _getch();
    if (code > 0 && code != 224) _putch(code);
    return code;
}

#endif

#endif
