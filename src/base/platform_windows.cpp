#include <sys/stat.h>
#include <windows.h>

#include "base/platform.h"
#include "base/utf8.h"

std::string ExecutablePath() {
    wchar_t buffer[260];
    const DWORD length = GetModuleFileNameW(nullptr, buffer, 260);
    return Narrow(std::wstring(buffer, length));
}

bool ChangeFolder(const std::string& folder) { return SetCurrentDirectoryW(Wide(folder).c_str()) != 0; }

std::string AbsolutePath(const std::string& path) {
    wchar_t buffer[4096];
    const DWORD length = GetFullPathNameW(Wide(path).c_str(), 4096, buffer, nullptr);
    return length > 0 && length < 4096 ? Narrow(std::wstring(buffer, length)) : path;
}

std::int64_t FileTime(const std::string& path) {
    struct _stat64 status;
    return _wstat64(Wide(path).c_str(), &status) == 0 ? static_cast<std::int64_t>(status.st_mtime) : 0;
}

bool SystemHasLibrary(const std::string& name) {
    return SearchPathW(nullptr, Wide(name).c_str(), nullptr, 0, nullptr, nullptr) > 0;
}
