#ifndef _WIN32

#include <fcntl.h>
#include <limits.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#ifdef __APPLE__
#include <mach-o/dyld.h>
#endif

#include "kv/platform.h"
#include "kv/ticks_posix.h"

const char* const executableSuffix = "";
const char searchPathSeparator = ':';
#ifdef __APPLE__
const char* const compilerAdvice = "On macOS: xcode-select --install";
#else
const char* const compilerAdvice = "On Debian: sudo apt-get install g++";
#endif

namespace {

// Whether a line of progress stands on the terminal.
volatile sig_atomic_t lineShown = 0;
const char eraseLine[] = "\r\033[K";

// An open file, closed at the end. A number below 0 is none.
struct Handle {
    explicit Handle(int opened) : number(opened) {}
    ~Handle() { Close(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    // Some file systems say only now that there was no room.
    bool Close() {
        const bool good = number < 0 || close(number) == 0;
        number = -1;
        return good;
    }

    int number;
};

bool WriteAll(int file, const char* text, ssize_t size) {
    while (size > 0) {
        const ssize_t written = write(file, text, static_cast<std::size_t>(size));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text += written;
        size -= written;
    }
    return true;
}

bool CopyContents(int from, int to) {
    char buffer[65536];
    ssize_t size = 0;
    while ((size = read(from, buffer, sizeof buffer)) != 0) {
        if (size < 0 && errno == EINTR) continue;
        if (size < 0 || !WriteAll(to, buffer, size)) return false;
    }
    return true;
}

// Waits for the lock of a file. False where the file system has no locks.
bool Acquire(int file, const std::function<void()>& whileWaiting) {
    if (flock(file, LOCK_EX | LOCK_NB) == 0) return true;
    const Ticks ticks(static_cast<bool>(whileWaiting));
    while (flock(file, LOCK_EX) != 0) {
        if (errno != EINTR) return false;
        if (whileWaiting) whileWaiting();
    }
    return true;
}

bool IsFileAt(int file, const std::string& path) {
    struct stat opened, found;
    return fstat(file, &opened) == 0 && lstat(path.c_str(), &found) == 0 && opened.st_dev == found.st_dev &&
           opened.st_ino == found.st_ino;
}

bool Empty(const std::string& folder) {
    std::error_code failed;
    std::filesystem::directory_iterator entry(folder, failed);
    for (; !failed && entry != std::filesystem::directory_iterator(); entry.increment(failed)) {
        if (std::filesystem::remove_all(entry->path(), failed); failed) return false;
    }
    return !failed;
}

}  // namespace

std::string PathForTool(const std::string& path, const std::string&) { return path; }

void UseBinaryStreams() {}

std::string OwnExecutable() {
#ifdef __APPLE__
    char name[PATH_MAX];
    uint32_t size = sizeof name;
    if (_NSGetExecutablePath(name, &size) != 0) return "";
    const std::filesystem::path self(name);
#else
    const std::filesystem::path self("/proc/self/exe");
#endif
    std::error_code failed;
    const std::filesystem::path path = std::filesystem::canonical(self, failed);
    return failed ? "" : path.string();
}

bool ErrorStreamHasColours() {
    const char* terminal = std::getenv("TERM");
    return isatty(STDERR_FILENO) && terminal != nullptr && *terminal != '\0' &&
           std::strcmp(terminal, "dumb") != 0;
}

int ErrorStreamColumns() {
    // A job in the background stays off the terminal.
    if (!ErrorStreamHasColours() || tcgetpgrp(STDERR_FILENO) != getpgrp()) return 0;
    struct winsize size;
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

void RewriteErrorLine(const std::string& text) {
    const std::string line = "\r" + text + "\033[K";
    lineShown = 1;
    if (write(STDERR_FILENO, line.data(), line.size()) < 0) lineShown = 0;
}

void EraseErrorLine() {
    if (lineShown != 0 && write(STDERR_FILENO, eraseLine, sizeof eraseLine - 1) > 0) lineShown = 0;
}

bool StateOf(const std::string& path, FileState& state) {
    struct stat information;
    if (stat(path.c_str(), &information) != 0) return false;
#ifdef __APPLE__
    const struct timespec written = information.st_mtimespec, changed = information.st_ctimespec;
#else
    const struct timespec written = information.st_mtim, changed = information.st_ctim;
#endif
    const long long writtenAt = written.tv_sec * 1000000000ll + written.tv_nsec;
    const long long changedAt = changed.tv_sec * 1000000000ll + changed.tv_nsec;
    state.text = std::to_string(information.st_size) + " " + std::to_string(writtenAt) + " " +
                 std::to_string(changedAt) + " " + std::to_string(information.st_ino);
    state.latest = changedAt;  // which nobody can set
    return true;
}

bool IsExecutable(const std::string& path) {
    struct stat information;
    return stat(path.c_str(), &information) == 0 && S_ISREG(information.st_mode) &&
           access(path.c_str(), X_OK) == 0;
}

std::string UserCacheFolder() {
    const char* cache = std::getenv("XDG_CACHE_HOME");
    if (cache != nullptr && *cache == '/') return cache;
    const char* home = std::getenv("HOME");
    return home != nullptr && *home == '/' ? std::string(home) + "/.cache" : "";
}

bool MakePrivateFolder(const std::string& folder) {
    mkdir(folder.c_str(), S_IRWXU);
    const Handle handle(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat information;
    if (fstat(handle.number, &information) != 0 || information.st_uid != geteuid()) return false;
    // What others could write may be theirs by now; what they could only read is closed
    // to them, and made anew.
    if ((information.st_mode & (S_IWGRP | S_IWOTH)) != 0) return false;
    if ((information.st_mode & (S_IRWXG | S_IRWXO)) == 0) return true;
    // The files in it may have been open to all, and be theirs.
    return fchmod(handle.number, S_IRWXU) == 0 && fstat(handle.number, &information) == 0 &&
           (information.st_mode & (S_IRWXG | S_IRWXO)) == 0 && Empty(folder);
}

bool BelongsToUser(const std::string& path) {
    struct stat information;
    return stat(path.c_str(), &information) == 0 && information.st_uid == geteuid();
}

bool CanWriteIn(const std::string& folder) { return access(folder.c_str(), W_OK | X_OK) == 0; }

bool IsShortOfFiles(const std::string& folder) {
    const unsigned long enough = 64;
    struct statvfs information;
    // Some file systems count none.
    return statvfs(folder.c_str(), &information) == 0 && information.f_files > 0 &&
           information.f_favail < enough;
}

bool CopyToNewFile(const std::string& from, const std::string& to, std::string& problem) {
    const Handle source(open(from.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat information;
    bool good = fstat(source.number, &information) == 0;
    Handle target(good ? open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, information.st_mode & 0777)
                       : -1);
    good = target.number >= 0 && CopyContents(source.number, target.number) && target.Close();
    if (!good) problem = std::strerror(errno);
    return good;
}

std::string UserTemporaryFolder() {
    std::error_code failed;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(failed);
    return (failed ? std::filesystem::path("/tmp") : folder) / ("korvel-" + std::to_string(geteuid()));
}

FileLock::FileLock(const std::string& path, const std::function<void()>& whileWaiting)
    : handle_(-1), isHeld_(false) {
    while (handle_ < 0) {
        // Without O_CLOEXEC, so that children inherit the handle and with it the lock.
        const int file = open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW, S_IRUSR | S_IWUSR);
        if (file < 0) return;
        handle_ = file;
        isHeld_ = Acquire(file, whileWaiting);
        if (!isHeld_ || IsFileAt(file, path)) return;
        close(file);  // the file was removed while another process had it, and may be there anew
        handle_ = -1;
        isHeld_ = false;
    }
}

FileLock::~FileLock() {
    if (handle_ < 0) return;
    flock(static_cast<int>(handle_), LOCK_UN);  // for those, too, that kv's children have left behind
    close(static_cast<int>(handle_));
}

#endif
