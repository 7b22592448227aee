#ifdef _WIN32

#include <windows.h>

// After windows.h.
#include <aclapi.h>
#include <fcntl.h>
#include <io.h>
#include <sddl.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "base/utf8.h"
#include "kv/platform.h"
#include "kv/windows_handles.h"

const char* const executableSuffix = ".exe";
const char searchPathSeparator = ';';
const char* const compilerAdvice =
    "On Windows: install MinGW-w64 (www.mingw-w64.org) and put its bin folder on PATH";

namespace {

// The user under whose name kv runs, as a SID; empty if it cannot be had.
std::string UserNumber() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return "";
    DWORD size = 0;
    GetTokenInformation(token, TokenUser, nullptr, 0, &size);
    std::vector<char> user(size);  // a record with a pointer into itself
    const BOOL known = GetTokenInformation(token, TokenUser, user.data(), size, &size);
    CloseHandle(token);
    if (!known) return "";
    const PSID sid = reinterpret_cast<TOKEN_USER*>(user.data())->User.Sid;
    return std::string(static_cast<const char*>(sid), GetLengthSid(sid));
}

bool IsAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](unsigned char c) { return c < 128; });
}

// The name of a file or folder in plain letters that some file systems keep beside its own.
std::filesystem::path ShortName(const std::filesystem::path& path) {
    wchar_t name[4096];
    const DWORD size = GetShortPathNameW(path.c_str(), name, 4096);
    return size > 0 && size < 4096 ? std::filesystem::path(std::wstring(name, size)) : path;
}

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

void WriteBeyondLimits() {}

void UseBinaryStreams() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
}

bool IsShortOfFiles(const std::string&) { return false; }

std::string PathForTool(const std::string& path, const std::string& folder) {
    if (IsAscii(path)) return path;
    const std::filesystem::path whole = PathOf(path).lexically_normal();
    const std::string way = TextOf(whole.lexically_relative(PathOf(folder).lexically_normal()));
    if (!way.empty() && IsAscii(way)) return way;
    // The file itself may be about to be written.
    const std::string shorter = TextOf(ShortName(whole.parent_path()) / whole.filename());
    return IsAscii(shorter) ? shorter : path;
}

std::string OwnExecutable() {
    wchar_t name[4096];
    const DWORD size = GetModuleFileNameW(nullptr, name, 4096);
    return size > 0 && size < 4096 ? Narrow(std::wstring(name, size)) : "";
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
    if (!GetFileAttributesExW(Wide(path).c_str(), GetFileExInfoStandard, &information)) return false;
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
    return std::filesystem::is_regular_file(PathOf(path), failed);
}

std::string UserCacheFolder() { return EnvironmentVariable("LOCALAPPDATA"); }

// What administrators makes belongs to all administrators together.
bool BelongsToUser(const std::string& path) {
    std::string user = UserNumber();
    std::wstring name = Wide(path);
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (user.empty() || GetNamedSecurityInfoW(&name[0], SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner,
                                              nullptr, nullptr, nullptr, &descriptor) != ERROR_SUCCESS) {
        return false;
    }
    const bool isOwn =
        EqualSid(owner, &user[0]) != 0 || IsWellKnownSid(owner, WinBuiltinAdministratorsSid) != 0;
    LocalFree(descriptor);
    return isOwn;
}

// All is allowed to the user, nothing to others; what is made in the folder inherits that.
static std::wstring RightsOfUserAlone() {
    std::string user = UserNumber();
    wchar_t* name = nullptr;
    if (!user.empty()) ConvertSidToStringSidW(&user[0], &name);
    const std::wstring rights = L"D:P(A;OICI;FA;;;" + std::wstring(name != nullptr ? name : L"OW") + L")";
    LocalFree(name);
    return rights;
}

bool MakePrivateFolder(const std::string& folder) {
    SECURITY_ATTRIBUTES attributes = {sizeof(SECURITY_ATTRIBUTES), nullptr, FALSE};
    ConvertStringSecurityDescriptorToSecurityDescriptorW(RightsOfUserAlone().c_str(), SDDL_REVISION_1,
                                                         &attributes.lpSecurityDescriptor, nullptr);
    CreateDirectoryW(Wide(folder).c_str(), &attributes);
    LocalFree(attributes.lpSecurityDescriptor);
    const DWORD kind = GetFileAttributesW(Wide(folder).c_str());
    const bool isFolder = kind != INVALID_FILE_ATTRIBUTES && (kind & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
                          (kind & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
    return isFolder && BelongsToUser(folder);
}

bool CanWriteIn(const std::string& folder) {
    const std::string file = folder + "\\lock";
    const HANDLE handle = CreateFileW(Wide(file).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    CloseIfOpen(handle);
    return handle != INVALID_HANDLE_VALUE;
}

bool CopyToNewFile(const std::string& from, const std::string& to, std::string& problem) {
    if (CopyFileW(Wide(from).c_str(), Wide(to).c_str(), TRUE)) return true;
    problem = LastProblem();
    return false;
}

std::string UserTemporaryFolder() {
    std::error_code failed;
    return TextOf(std::filesystem::temp_directory_path(failed) / L"korvel");
}

// No child needs to hold the lock, as none outlives kv.
FileLock::FileLock(const std::string& path, const std::function<void()>& whileWaiting)
    : handle_(-1), isHeld_(false) {
    const HANDLE file =
        CreateFileW(Wide(path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    handle_ = reinterpret_cast<long long>(file);
    OVERLAPPED place = {};
    const DWORD exclusive = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
    while (!LockFileEx(file, exclusive, 0, 1, 0, &place)) {
        if (GetLastError() != ERROR_LOCK_VIOLATION) return;
        Sleep(tickMilliseconds);
        if (whileWaiting) whileWaiting();
    }
    isHeld_ = true;
}

FileLock::~FileLock() {
    if (handle_ != -1) CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

#endif
