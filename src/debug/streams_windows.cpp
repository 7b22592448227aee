#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "debug/streams.h"

namespace debug {

namespace {

// Nobody can wait for pipes there: they are looked at, at first all the time, for answers come soon.
constexpr DWORD soon = 3, longestNap = 10;  // milliseconds

// What is no pipe, or one at its end, is found out by reading.
bool HasMore(int descriptor) {
    DWORD waiting = 0;
    const HANDLE handle = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
    return PeekNamedPipe(handle, nullptr, 0, nullptr, &waiting, nullptr) == 0 || waiting > 0;
}

bool Look(std::vector<Awaited>& all) {
    for (Awaited& one : all) one.hasCome = one.descriptor != -1 && (one.writes || HasMore(one.descriptor));
    return std::any_of(all.begin(), all.end(), [](const Awaited& one) { return one.hasCome; });
}

// The input as kv has found it, and where it goes on.
HANDLE foundInput, ownInput;

DWORD WINAPI Pump(void*) {
    char bytes[4096];
    DWORD read = 0, written = 0;
    while (ReadFile(foundInput, bytes, sizeof bytes, &read, nullptr) != 0 && read > 0 &&
           WriteFile(ownInput, bytes, read, &written, nullptr) != 0) {
    }
    CloseHandle(ownInput);
    return 0;
}

}  // namespace

// Not everything that a program may have there can be looked at: it comes through a pipe of kv's own.
void PrepareInput() {
    HANDLE from = nullptr;
    if (CreatePipe(&from, &ownInput, nullptr, 0) == 0) return;
    foundInput = reinterpret_cast<HANDLE>(_get_osfhandle(_dup(_fileno(stdin))));
    CloseHandle(CreateThread(nullptr, 0, Pump, nullptr, 0, nullptr));
    const int input = _open_osfhandle(reinterpret_cast<std::intptr_t>(from), _O_RDONLY | _O_BINARY);
    _dup2(input, _fileno(stdin));
    _close(input);
    std::setvbuf(stdin, nullptr, _IONBF, 0);
}

void Close(int& descriptor) {
    if (descriptor != -1) _close(descriptor);
    descriptor = -1;
}

bool Read(int& from, std::string& text) {
    char bytes[65536];
    const int count = _read(from, bytes, sizeof bytes);
    if (count > 0) text.append(bytes, static_cast<std::size_t>(count));
    if (count <= 0) Close(from);
    return count > 0;
}

// The program's side reads all the time.
void WriteSome(int to, std::string& text) {
    if (!text.empty()) _write(to, text.data(), static_cast<unsigned>(text.size()));
    text.clear();
}

bool Await(std::vector<Awaited>& all, int milliseconds) {
    const DWORD begun = GetTickCount();
    for (;;) {
        if (Look(all)) return true;
        const DWORD passed = GetTickCount() - begun;
        if (milliseconds >= 0 && passed >= static_cast<DWORD>(milliseconds)) return false;
        Sleep(passed < soon ? 0 : std::min(passed / soon, longestNap));
    }
}

}  // namespace debug
