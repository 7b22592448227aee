#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <filesystem>

#include "base/platform.h"
#ifdef __APPLE__
#include <mach-o/dyld.h>
#endif

std::string ExecutablePath() {
    char buffer[PATH_MAX];
#ifdef __APPLE__
    std::uint32_t size = sizeof buffer;
    if (_NSGetExecutablePath(buffer, &size) != 0) return {};
    std::string path(buffer);
#else
    const ssize_t length = readlink("/proc/self/exe", buffer, sizeof buffer);
    if (length < 0) return {};
    std::string path(buffer, static_cast<std::size_t>(length));
#endif
    return path.substr(0, 260);  // as long as such a path gets on any platform
}

bool ChangeFolder(const std::string& folder) { return chdir(folder.c_str()) == 0; }

std::string AbsolutePath(const std::string& path) {
    std::error_code failed;
    const std::filesystem::path full = std::filesystem::absolute(path, failed);
    return failed ? path : full.lexically_normal().string();
}

std::int64_t FileTime(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 ? static_cast<std::int64_t>(status.st_mtime) : 0;
}
