#ifndef _WIN32

#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#ifdef __APPLE__
#include <mach-o/dyld.h>
#endif

#include "kv/platform.h"

const char* const executableSuffix = "";
const char searchPathSeparator = ':';

namespace {

// The program that signals to kv are passed on to.
volatile sig_atomic_t childProcess = 0;

void PassOn(int number) {
    if (childProcess > 0) kill(static_cast<pid_t>(childProcess), number);
}

// While the user's program runs: Ctrl-C reaches it from the terminal itself, what is sent to kv is passed on.
class SignalsForChild {
public:
    SignalsForChild() {
        for (int i = 0; i < count; ++i) {
            struct sigaction action;
            std::memset(&action, 0, sizeof action);
            action.sa_handler = i < ignored ? SIG_IGN : PassOn;
            action.sa_flags = SA_RESTART;
            sigaction(numbers[i], &action, &before_[i]);
        }
    }
    ~SignalsForChild() { Restore(); }
    SignalsForChild(const SignalsForChild&) = delete;
    SignalsForChild& operator=(const SignalsForChild&) = delete;

    void Restore() const {
        for (int i = 0; i < count; ++i) sigaction(numbers[i], &before_[i], nullptr);
    }

private:
    static constexpr int count = 4;
    static constexpr int ignored = 2;
    static constexpr int numbers[count] = {SIGINT, SIGQUIT, SIGTERM, SIGHUP};
    struct sigaction before_[count];
};

// A program that was killed leaves the terminal as it was at that moment.
class TerminalModes {
public:
    TerminalModes() : known_(tcgetattr(STDIN_FILENO, &modes_) == 0) {}
    void Restore() const {
        if (known_ && tcgetpgrp(STDIN_FILENO) == getpgrp()) tcsetattr(STDIN_FILENO, TCSADRAIN, &modes_);
    }

private:
    struct termios modes_;
    bool known_;
};

void OpenAs(int descriptor, const std::string& path, int flags) {
    const int file = open(path.c_str(), flags, 0666);
    if (file < 0) return;
    dup2(file, descriptor);
    if (file != descriptor) close(file);
}

// In the child: becomes the program. What goes wrong is written to `report` as an error number.
[[noreturn]] void Become(const ProcessRequest& request, const std::vector<char*>& arguments, int report) {
    if (!request.outputFile.empty()) {
        OpenAs(STDIN_FILENO, "/dev/null", O_RDONLY);
        OpenAs(STDOUT_FILENO, request.outputFile, O_WRONLY | O_CREAT | O_TRUNC);
        OpenAs(STDERR_FILENO, request.errorFile, O_WRONLY | O_CREAT | O_TRUNC);
    }
    if (request.workingFolder.empty() || chdir(request.workingFolder.c_str()) == 0) {
        execv(arguments[0], arguments.data());
    }
    const int reason = errno;
    const ssize_t written = write(report, &reason, sizeof reason);
    _exit(written == sizeof reason ? 127 : 126);
}

int WaitFor(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) return 1;
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

int RunProcess(const ProcessRequest& request, std::string& problem) {
    std::vector<char*> arguments;
    for (const std::string& argument : request.arguments)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);

    int report[2];
    if (pipe(report) != 0) {
        problem = std::strerror(errno);
        return -1;
    }
    fcntl(report[0], F_SETFD, FD_CLOEXEC);
    fcntl(report[1], F_SETFD, FD_CLOEXEC);
    const TerminalModes modes;
    const bool isForeground = request.outputFile.empty();
    SignalsForChild* const signals = isForeground ? new SignalsForChild : nullptr;
    const pid_t child = fork();
    if (child == 0) {
        if (signals != nullptr) signals->Restore();
        Become(request, arguments, report[1]);
    }
    int reason = child < 0 ? errno : 0;
    close(report[1]);
    int status = -1;
    if (child > 0) {
        childProcess = child;
        if (read(report[0], &reason, sizeof reason) < 0) reason = 0;
        status = WaitFor(child);
        childProcess = 0;
        if (isForeground && status > 128) modes.Restore();
    }
    close(report[0]);
    delete signals;
    if (reason == 0) return status;
    problem = std::strerror(reason);
    return -1;
}

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
    mkdir(folder.c_str(), 0700);
    struct stat information;
    return lstat(folder.c_str(), &information) == 0 && S_ISDIR(information.st_mode) &&
           information.st_uid == geteuid() && (information.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

std::string UserTemporaryFolder() {
    std::error_code failed;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(failed);
    return (failed ? std::filesystem::path("/tmp") : folder) / ("korvel-" + std::to_string(geteuid()));
}

FileLock::FileLock(const std::string& path)
    : handle_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
    if (handle_ >= 0) {
        while (flock(static_cast<int>(handle_), LOCK_EX) != 0 && errno == EINTR) {
        }
    }
}

FileLock::~FileLock() {
    if (handle_ >= 0) close(static_cast<int>(handle_));
}

#endif
