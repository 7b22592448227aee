#ifdef _WIN32

#include <windows.h>

#include <cstdlib>
#include <filesystem>

#include "kv/command_quoting.h"
#include "kv/platform.h"

const char* const executableSuffix = ".exe";
const char searchPathSeparator = ';';

namespace {

std::string LastProblem() { return "Windows error " + std::to_string(GetLastError()); }

HANDLE OpenForChild(const std::string& path, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES inheritable = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable, disposition,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

void CloseIfOpen(HANDLE handle) {
    if (handle != nullptr && handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
}

BOOL WINAPI IgnoreCtrlC(DWORD) { return TRUE; }

const DWORD tickMilliseconds = 100;

// Whether a line of progress stands in the console. Ctrl-C is handled in a thread of its own.
volatile LONG lineShown = 0;

void WriteToConsole(const std::string& text) {
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), text.data(), static_cast<DWORD>(text.size()), &written,
              nullptr);
}

BOOL WINAPI EraseAtCtrlC(DWORD) {
    EraseErrorLine();
    return FALSE;  // and the usual end
}

}  // namespace

int RunProcess(const ProcessRequest& request, std::string& problem) {
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    const bool captured = !request.outputFile.empty();
    if (captured) {
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = OpenForChild("NUL", GENERIC_READ, OPEN_EXISTING);
        startup.hStdOutput = OpenForChild(request.outputFile, GENERIC_WRITE, CREATE_ALWAYS);
        startup.hStdError = OpenForChild(request.errorFile, GENERIC_WRITE, CREATE_ALWAYS);
    }
    std::string line = WindowsCommandLine(request.arguments);
    const char* folder = request.workingFolder.empty() ? nullptr : request.workingFolder.c_str();
    PROCESS_INFORMATION process = {};
    if (!captured) SetConsoleCtrlHandler(IgnoreCtrlC, TRUE);
    const BOOL started = CreateProcessA(request.arguments[0].c_str(), &line[0], nullptr, nullptr, TRUE, 0,
                                        nullptr, folder, &startup, &process);
    int status = -1;
    if (started) {
        while (WaitForSingleObject(process.hProcess, tickMilliseconds) == WAIT_TIMEOUT) {
            if (request.whileWaiting) request.whileWaiting();
        }
        DWORD code = 1;
        GetExitCodeProcess(process.hProcess, &code);
        status = static_cast<int>(code & 0x7FFFFFFF);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    } else {
        problem = LastProblem();
    }
    if (!captured) SetConsoleCtrlHandler(IgnoreCtrlC, FALSE);
    CloseIfOpen(startup.hStdInput);
    CloseIfOpen(startup.hStdOutput);
    CloseIfOpen(startup.hStdError);
    return status;
}

std::string OwnExecutable() {
    char name[MAX_PATH];
    const DWORD size = GetModuleFileNameA(nullptr, name, MAX_PATH);
    return size > 0 && size < MAX_PATH ? std::string(name, size) : "";
}

bool ErrorStreamHasColours() {
    const HANDLE stream = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    if (!GetConsoleMode(stream, &mode)) return false;
    return SetConsoleMode(stream, mode | 0x0004) != 0;  // escape sequences are understood
}

int ErrorStreamColumns() {
    if (!ErrorStreamHasColours()) return 0;
    CONSOLE_SCREEN_BUFFER_INFO information;
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &information)) return 0;
    return information.srWindow.Right - information.srWindow.Left + 1;
}

void RewriteErrorLine(const std::string& text) {
    static const BOOL handled = SetConsoleCtrlHandler(EraseAtCtrlC, TRUE);
    if (!handled) return;
    lineShown = 1;
    WriteToConsole("\r" + text + "\033[K");
}

void EraseErrorLine() {
    if (InterlockedExchange(&lineShown, 0) != 0) WriteToConsole("\r\033[K");
}

bool StateOf(const std::string& path, FileState& state) {
    WIN32_FILE_ATTRIBUTE_DATA information;
    if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &information)) return false;
    const auto joined = [](DWORD high, DWORD low) {
        return static_cast<long long>(static_cast<unsigned long long>(high) << 32 | low);
    };
    const long long written =
        joined(information.ftLastWriteTime.dwHighDateTime, information.ftLastWriteTime.dwLowDateTime);
    state.text = std::to_string(joined(information.nFileSizeHigh, information.nFileSizeLow)) + " " +
                 std::to_string(written);
    state.latest = written * 100;
    return true;
}

bool IsExecutable(const std::string& path) {
    std::error_code failed;
    return std::filesystem::is_regular_file(path, failed);
}

std::string UserCacheFolder() {
    const char* folder = std::getenv("LOCALAPPDATA");
    return folder != nullptr ? folder : "";
}

bool MakePrivateFolder(const std::string& folder) {
    std::error_code failed;
    std::filesystem::create_directories(folder, failed);
    return std::filesystem::is_directory(folder, failed);
}

std::string UserTemporaryFolder() {
    std::error_code failed;
    return (std::filesystem::temp_directory_path(failed) / "korvel").string();
}

FileLock::FileLock(const std::string& path, const std::function<void()>& whileWaiting) : handle_(-1) {
    const HANDLE file =
        CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    OVERLAPPED place = {};
    const DWORD exclusive = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
    while (!LockFileEx(file, exclusive, 0, 1, 0, &place) && GetLastError() == ERROR_LOCK_VIOLATION) {
        Sleep(tickMilliseconds);
        if (whileWaiting) whileWaiting();
    }
    handle_ = reinterpret_cast<long long>(file);
}

FileLock::~FileLock() {
    if (handle_ != -1) CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

#endif
