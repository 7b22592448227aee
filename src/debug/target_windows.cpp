#include "debug/target.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include "base/command_quoting.h"
#include "base/utf8.h"
#include "debug/streams.h"

namespace debug {

namespace {

constexpr unsigned roomInPipe = 65536;
const char lineVariable[] = "KV_DEBUG_LISTENS";

HANDLE HandleOf(int descriptor) { return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor)); }
std::string NameOf(int descriptor) {
    return std::to_string(reinterpret_cast<std::uintptr_t>(HandleOf(descriptor)));
}

// A pipe of which the program has one end.
struct Pipe {
    int own = -1, programs = -1;

    ~Pipe() {
        Close(own);
        Close(programs);
    }
    bool Make(bool programReads) {
        int ends[2];
        if (_pipe(ends, roomInPipe, _O_BINARY | _O_NOINHERIT) != 0) return false;
        own = ends[programReads ? 1 : 0];
        programs = ends[programReads ? 0 : 1];
        return SetHandleInformation(HandleOf(programs), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT) != 0;
    }
    int Take() {
        const int taken = own;
        own = -1;
        return taken;
    }
};

}  // namespace

bool Target::Start(const std::vector<std::string>& command, const std::string& folder, bool catches,
                   std::string& problem) {
    Pipe from, to, in, out, err;
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    bool isMade = from.Make(false) && to.Make(true);
    if (catches) {
        isMade = isMade && in.Make(true) && out.Make(false) && err.Make(false);
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = HandleOf(in.programs);
        startup.hStdOutput = HandleOf(out.programs);
        startup.hStdError = HandleOf(err.programs);
    }
    std::wstring words = Wide(WindowsCommandLine(command));
    const std::wstring place = Wide(folder);
    PROCESS_INFORMATION made = {};
    PutEnvironmentVariable(lineVariable, NameOf(to.programs) + " " + NameOf(from.programs));
    isMade = isMade && CreateProcessW(Wide(command[0]).c_str(), &words[0], nullptr, nullptr, TRUE, 0, nullptr,
                                      place.empty() ? nullptr : place.c_str(), &startup, &made) != 0;
    PutEnvironmentVariable(lineVariable, "");
    if (!isMade) {
        problem = "Windows error " + std::to_string(GetLastError());
        return false;
    }
    CloseHandle(made.hThread);
    process = reinterpret_cast<std::intptr_t>(made.hProcess);
    line = from.Take();
    orders = to.Take();
    input = in.Take();
    output = out.Take();
    errors = err.Take();
    return true;
}

bool Target::Type(const std::string& text) const {
    return input != -1 && _write(input, text.data(), static_cast<unsigned>(text.size())) > 0;
}

int Target::EndHere(bool kills) const {
    const HANDLE handle = reinterpret_cast<HANDLE>(process);
    DWORD status = 1;
    if (kills) TerminateProcess(handle, status);
    WaitForSingleObject(handle, INFINITE);
    GetExitCodeProcess(handle, &status);
    CloseHandle(handle);
    return static_cast<int>(status);
}

}  // namespace debug
