#ifndef _WIN32

#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
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

const char* const executableSuffix = "";
const char searchPathSeparator = ':';

namespace {

// The program that signals to kv are passed on to.
volatile sig_atomic_t childProcess = 0;

void PassOn(int number) {
    if (childProcess > 0) kill(static_cast<pid_t>(childProcess), number);
}

// Whether a line of progress stands on the terminal.
volatile sig_atomic_t lineShown = 0;
const char eraseLine[] = "\r\033[K";

// For kv at work: nothing of the work is left behind, and the signal ends kv as it would have done.
void EndWork(int number) {
    if (lineShown != 0 && write(STDERR_FILENO, eraseLine, sizeof eraseLine - 1) > 0) lineShown = 0;
    PassOn(number);
    struct sigaction usual;
    std::memset(&usual, 0, sizeof usual);
    usual.sa_handler = SIG_DFL;
    sigaction(number, &usual, nullptr);
    raise(number);
}

// While the user's program runs: Ctrl-C reaches it from the terminal itself, what is sent to kv is passed on. While
// a tool runs: what ends kv ends the tool. Signals that whoever started kv wanted ignored stay so.
class SignalsForChild {
public:
    explicit SignalsForChild(bool isTool) {
        for (int i = 0; i < count; ++i) {
            struct sigaction action;
            std::memset(&action, 0, sizeof action);
            action.sa_handler = isTool ? EndWork : i < ignored ? SIG_IGN : PassOn;
            action.sa_flags = SA_RESTART;
            sigaction(numbers[i], &action, &before_[i]);
            if (isTool && before_[i].sa_handler == SIG_IGN) sigaction(numbers[i], &before_[i], nullptr);
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

// As long as it lives, calls that wait are interrupted ten times a second.
class Ticks {
public:
    explicit Ticks(bool wanted) : wanted_(wanted) {
        if (!wanted_) return;
        struct sigaction action;
        std::memset(&action, 0, sizeof action);
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, &before_);
        Every(100000);
    }
    ~Ticks() {
        if (!wanted_) return;
        Every(0);
        sigaction(SIGALRM, &before_, nullptr);
    }
    Ticks(const Ticks&) = delete;
    Ticks& operator=(const Ticks&) = delete;

private:
    static void Every(int microseconds) {
        struct itimerval timer = {};
        timer.it_interval.tv_usec = timer.it_value.tv_usec = microseconds;
        setitimer(ITIMER_REAL, &timer, nullptr);
    }

    bool wanted_;
    struct sigaction before_;
};

// Where the file cannot be had, what is written there is lost: it is meant for nobody's eyes as it is.
void OpenAs(int descriptor, const std::string& path, int flags) {
    int file = open(path.c_str(), flags, 0666);
    if (file < 0) file = open("/dev/null", O_RDWR);
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

int WaitFor(pid_t child, const std::function<void()>& whileWaiting) {
    const Ticks ticks(static_cast<bool>(whileWaiting));
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) return 1;
        if (whileWaiting) whileWaiting();
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
    const SignalsForChild signals(!isForeground);
    const pid_t child = fork();
    if (child == 0) {
        signals.Restore();
        Become(request, arguments, report[1]);
    }
    int reason = child < 0 ? errno : 0;
    close(report[1]);
    int status = -1;
    if (child > 0) {
        childProcess = child;
        while (read(report[0], &reason, sizeof reason) < 0 && errno == EINTR) {
        }
        status = WaitFor(child, request.whileWaiting);
        childProcess = 0;
        if (isForeground && status > 128) modes.Restore();
    }
    close(report[0]);
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

FileLock::FileLock(const std::string& path, const std::function<void()>& whileWaiting)
    : handle_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
    if (handle_ < 0 || flock(static_cast<int>(handle_), LOCK_EX | LOCK_NB) == 0) return;
    const Ticks ticks(static_cast<bool>(whileWaiting));
    while (flock(static_cast<int>(handle_), LOCK_EX) != 0 && errno == EINTR) {
        if (whileWaiting) whileWaiting();
    }
}

FileLock::~FileLock() {
    if (handle_ >= 0) close(static_cast<int>(handle_));
}

#endif
