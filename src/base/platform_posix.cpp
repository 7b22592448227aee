#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <sstream>
#include <vector>

#include "base/platform.h"
#include "base/utf8.h"
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

// The loader itself is not asked, for that would run the library.
bool SystemHasLibrary(const std::string& name) {
    namespace fs = std::filesystem;
    std::vector<fs::path> folders = {"/lib", "/lib64", "/usr/lib", "/usr/lib64", "/usr/local/lib"};
    std::error_code failed;
    const std::vector<fs::path> tops = folders;
    for (const fs::path& top : tops) {
        for (fs::directory_iterator entry(top, failed), end; !failed && entry != end;
             entry.increment(failed)) {
            // The folders of an architecture: x86_64-linux-gnu.
            if (entry->path().filename().string().find("-linux-") != std::string::npos)
                folders.push_back(entry->path());
        }
    }
    std::istringstream more(EnvironmentVariable("LD_LIBRARY_PATH"));
    for (std::string folder; std::getline(more, folder, ':');) folders.emplace_back(folder);
    return name.find('/') == std::string::npos &&
           std::any_of(folders.begin(), folders.end(),
                       [&](const fs::path& folder) { return fs::is_regular_file(folder / name, failed); });
}
