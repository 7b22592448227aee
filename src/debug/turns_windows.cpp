// Ctrl-C, and what is said on the error stream meanwhile. Consoles keep no modes of whoever's turn it was.
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <atomic>
#include <cstdio>

#include "base/utf8.h"
#include "debug/target.h"

namespace debug {

namespace {

std::atomic<bool> wasInterrupted{false};

BOOL WINAPI NoteInterrupt(DWORD event) {
    if (event != CTRL_C_EVENT) return FALSE;
    wasInterrupted = true;
    return TRUE;
}

// A file that goes when it is closed.
int TemporaryFile() {
    wchar_t folder[MAX_PATH + 1], name[MAX_PATH + 1];
    if (GetTempPathW(MAX_PATH + 1, folder) == 0 || GetTempFileNameW(folder, L"kv", 0, name) == 0) return -1;
    return _wopen(name, _O_RDWR | _O_CREAT | _O_TEMPORARY | _O_NOINHERIT | _O_BINARY, _S_IREAD | _S_IWRITE);
}

}  // namespace

bool TakeInterrupt() { return wasInterrupted.exchange(false); }

std::string ErrorsOf(const std::function<void()>& work) {
    const int errors = _fileno(stderr), own = _dup(errors), kept = TemporaryFile();
    if (kept != -1) _dup2(kept, errors);
    work();
    std::fflush(stderr);
    _dup2(own, errors);
    _close(own);
    std::string text;
    if (kept == -1) return text;
    _lseek(kept, 0, SEEK_SET);
    char bytes[4096];
    for (int count; (count = _read(kept, bytes, sizeof bytes)) > 0;)
        text.append(bytes, static_cast<std::size_t>(count));
    _close(kept);
    return text;
}

TerminalTurns::TerminalTurns() { SetConsoleCtrlHandler(NoteInterrupt, TRUE); }
TerminalTurns::~TerminalTurns() { SetConsoleCtrlHandler(NoteInterrupt, FALSE); }
void TerminalTurns::ToUser() {}
void TerminalTurns::ToProgram() { wasInterrupted = false; }

}  // namespace debug
