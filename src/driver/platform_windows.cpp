#include <sys/stat.h>
#include <windows.h>

#include "driver/platform.h"

std::string ExecutablePath() {
    char buffer[260];
    const DWORD length = GetModuleFileNameA(nullptr, buffer, sizeof buffer);
    return std::string(buffer, length);
}

bool ChangeFolder(const std::string& folder) { return SetCurrentDirectoryA(folder.c_str()) != 0; }

std::string AbsolutePath(const std::string& path) {
    char buffer[4096];
    const DWORD length = GetFullPathNameA(path.c_str(), sizeof buffer, buffer, nullptr);
    return length > 0 && length < sizeof buffer ? std::string(buffer, length) : path;
}

std::int64_t FileTime(const std::string& path) {
    struct _stat64 status;
    return _stat64(path.c_str(), &status) == 0 ? static_cast<std::int64_t>(status.st_mtime) : 0;
}
