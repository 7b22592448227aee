// The line from the program to kv. Where there are signals it is a socket, and what comes raises one; on Windows it is two
// pipes, at one of which a thread listens.
#include "kvdebugger_talk.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>

#ifndef _WIN32

#include "conio.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kvdebug {

namespace {

int line = -1;

void NoteMail(int) { debugger->hasMail = 1; }

}  // namespace

void OpenLine(const char* name) {
    line = std::atoi(name);
    unsetenv("KV_DEBUG_LISTENS");
    struct sigaction noted;
    std::memset(&noted, 0, sizeof noted);
    noted.sa_handler = NoteMail;
    noted.sa_flags = SA_RESTART;
    sigaction(SIGIO, &noted, nullptr);
    signal(SIGINT, SIG_IGN);  // kv makes a pause of it
    fcntl(line, F_SETFD, FD_CLOEXEC);
    fcntl(line, F_SETOWN, getpid());
    fcntl(line, F_SETFL, fcntl(line, F_GETFL) | O_ASYNC);
}

void Say(const std::string& text) {
    const std::string whole = text + "\n";
    for (std::size_t at = 0; at < whole.size();) {
        const ssize_t written = write(line, whole.data() + at, whole.size() - at);
        if (written < 0 && errno != EINTR) return;
        if (written > 0) at += static_cast<std::size_t>(written);
    }
}

void ReadMore() {
    char bytes[4096];
    const ssize_t count = read(line, bytes, sizeof bytes);
    if (count > 0) debugger->unread.append(bytes, static_cast<std::size_t>(count));
    if (count == 0 || (count < 0 && errno != EINTR && errno != EAGAIN)) _exit(1);
}

bool HasMore(int milliseconds) {
    struct pollfd asked = {line, POLLIN, 0};
    return poll(&asked, 1, milliseconds) > 0;
}

void HearBesideInput(void (*hear)()) {
    kvconio::TheState().aside = line;
    kvconio::TheState().hear = hear;
    kvconio::OwnInput();
    if (isatty(STDIN_FILENO) == 0) std::setvbuf(stdin, nullptr, _IONBF, 0);  // the rest may be for kv
}

}  // namespace kvdebug

#else

#include <io.h>
#include <windows.h>
#include <streambuf>

namespace kvdebug {

namespace {

const DWORD inputLooks = 10;  // milliseconds between looks at an input that nobody can wait for

HANDLE fromKv, toKv;
HANDLE mail;  // an event: something is in the inbox
CRITICAL_SECTION lock;
std::string inbox;
void (*hearer)();

DWORD WINAPI Listen(void*) {
    char bytes[4096];
    for (DWORD count; ReadFile(fromKv, bytes, sizeof bytes, &count, nullptr) && count > 0;) {
        EnterCriticalSection(&lock);
        inbox.append(bytes, count);
        LeaveCriticalSection(&lock);
        debugger->hasMail = 1;
        SetEvent(mail);
    }
    TerminateProcess(GetCurrentProcess(), 1);
    return 0;
}

bool HasMail() {
    EnterCriticalSection(&lock);
    const bool has = !inbox.empty();
    LeaveCriticalSection(&lock);
    return has;
}

// Whether nobody has to wait for the input: of pipes it can be known.
bool HasInput() {
    DWORD waiting = 0;
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    return GetFileType(input) != FILE_TYPE_PIPE ||
           !PeekNamedPipe(input, nullptr, 0, nullptr, &waiting, nullptr) || waiting > 0;
}

// Stands before std::cin's own buffer.
class HeardInput : public std::streambuf {
public:
    explicit HeardInput(std::streambuf* buffer) : own(buffer) {}

protected:
    int_type underflow() override {
        if (!hasByte) Wait();
        return Noted(own->sgetc());
    }
    int_type uflow() override {
        if (!hasByte) Wait();
        hasByte = false;
        return own->sbumpc();
    }
    int_type pbackfail(int_type c) override {
        return Noted(traits_type::eq_int_type(c, traits_type::eof())
                         ? own->sungetc()
                         : own->sputbackc(traits_type::to_char_type(c)));
    }
    std::streamsize showmanyc() override { return own->in_avail(); }
    int sync() override { return own->pubsync(); }

private:
    std::streambuf* own;
    bool hasByte = false;  // one that has been looked at, and is to be read

    int_type Noted(int_type c) {
        hasByte = !traits_type::eq_int_type(c, traits_type::eof());
        return c;
    }
    void Wait() const {
        while (!HasInput()) {
            if (HasMore(inputLooks)) hearer();
        }
    }
};

HANDLE HandleOf(const char* text) {
    const HANDLE handle = reinterpret_cast<HANDLE>(std::strtoull(text, nullptr, 10));
    SetHandleInformation(handle, HANDLE_FLAG_INHERIT, 0);
    return handle;
}

}  // namespace

void OpenLine(const char* name) {
    fromKv = HandleOf(name);
    toKv = HandleOf(std::strchr(name, ' '));
    _putenv("KV_DEBUG_LISTENS=");
    SetConsoleCtrlHandler(nullptr, TRUE);  // kv makes a pause of Ctrl-C
    InitializeCriticalSection(&lock);
    mail = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    CloseHandle(CreateThread(nullptr, 0, Listen, nullptr, 0, nullptr));
}

void Say(const std::string& text) {
    const std::string whole = text + "\n";
    DWORD written = 0;
    WriteFile(toKv, whole.data(), static_cast<DWORD>(whole.size()), &written, nullptr);
}

void ReadMore() {
    while (!HasMore(-1)) {
    }
    EnterCriticalSection(&lock);
    debugger->unread += inbox;
    inbox.clear();
    LeaveCriticalSection(&lock);
}

bool HasMore(int milliseconds) {
    if (!HasMail()) WaitForSingleObject(mail, static_cast<DWORD>(milliseconds));
    return HasMail();  // the event may be that of mail that has been read
}

void HearBesideInput(void (*hear)()) {
    hearer = hear;
    std::cin.rdbuf(new HeardInput(std::cin.rdbuf()));  // never destroyed: std::cin is used until the very end
    if (_isatty(_fileno(stdin)) == 0) std::setvbuf(stdin, nullptr, _IONBF, 0);  // the rest may be for kv
}

}  // namespace kvdebug

#endif
