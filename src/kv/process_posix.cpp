#ifndef _WIN32

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "kv/platform.h"
#include "kv/ticks_posix.h"

namespace {

// The program that signals to kv are passed on to. A tool leads a group of its own, in which are all the programs
// that it starts.
volatile sig_atomic_t childProcess = 0;

// What a signal did for kv's caller that tells of a file beyond the limit of its size.
struct sigaction limitBefore;
bool isLimitIgnored = false;

void PassOn(int number) {
    if (childProcess > 0) kill(static_cast<pid_t>(childProcess), number);
}

// Ends a tool with all that it has started: first as the signal asks it to, so that it can tidy up, and those that are
// left a moment later for good.
void EndGroup(pid_t leader, int number) {
    const int steps = 50, milliseconds = 10;
    kill(-leader, number);
    for (int i = 0; i < steps && waitpid(leader, nullptr, WNOHANG) == 0; ++i) poll(nullptr, 0, milliseconds);
    kill(-leader, SIGKILL);
}

// For kv at work: nothing goes on working, no line is left on the terminal, and the signal ends kv as it would have
// done.
void EndWork(int number) {
    EraseErrorLine();
    if (childProcess > 0) EndGroup(static_cast<pid_t>(childProcess), number);
    struct sigaction usual;
    std::memset(&usual, 0, sizeof usual);
    usual.sa_handler = SIG_DFL;
    sigaction(number, &usual, nullptr);
    raise(number);
}

// While the user's program runs: Ctrl-C reaches it from the terminal itself, what is sent to kv is passed on. While
// a tool runs: what ends kv ends the tool. Signals that whoever started kv wanted ignored stay so. They are held back
// until the child is known.
class SignalsForChild {
public:
    explicit SignalsForChild(bool isTool) {
        sigset_t all;
        sigemptyset(&all);
        for (const int number : numbers) sigaddset(&all, number);
        sigprocmask(SIG_BLOCK, &all, &maskBefore_);
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

    void LetThrough() const { sigprocmask(SIG_SETMASK, &maskBefore_, nullptr); }
    void Restore() const {
        for (int i = 0; i < count; ++i) sigaction(numbers[i], &before_[i], nullptr);
        LetThrough();
    }

private:
    static constexpr int count = 4;
    static constexpr int ignored = 2;
    static constexpr int numbers[count] = {SIGINT, SIGQUIT, SIGTERM, SIGHUP};
    struct sigaction before_[count];
    sigset_t maskBefore_;
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

// Where the file cannot be had, what is written there is lost: it is meant for nobody's eyes as it is.
void OpenAs(int descriptor, const std::string& path, int flags) {
    int file = open(path.c_str(), flags, 0666);
    if (file < 0) file = open("/dev/null", O_RDWR);
    if (file < 0) return;
    dup2(file, descriptor);
    if (file != descriptor) close(file);
}

// A new file, whatever stood there.
void WriteTo(int descriptor, const std::string& path) {
    unlink(path.c_str());
    OpenAs(descriptor, path, O_WRONLY | O_CREAT | O_EXCL);
}

// In the child: becomes the program. What goes wrong is written to `report` as an error number.
[[noreturn]] void Become(const ProcessRequest& request, const std::vector<char*>& arguments, int report) {
    if (!request.outputFile.empty()) {
        OpenAs(STDIN_FILENO, "/dev/null", O_RDONLY);
        WriteTo(STDOUT_FILENO, request.outputFile);
        WriteTo(STDERR_FILENO, request.errorFile);
    }
    if (request.workingFolder.empty() || chdir(request.workingFolder.c_str()) == 0) {
        execv(arguments[0], arguments.data());
    }
    const int reason = errno;
    const ssize_t written = write(report, &reason, sizeof reason);
    _exit(written == sizeof reason ? 127 : 126);
}

int WaitFor(pid_t child, const std::function<void()>& whileWaiting, const std::function<bool()>& shallEnd) {
    const Ticks ticks(whileWaiting || shallEnd);
    const int patience = 10;  // ticks until a program that takes no notice is killed
    int status = 0, asked = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) return 1;
        if (whileWaiting) whileWaiting();
        if (shallEnd && shallEnd()) kill(child, ++asked < patience ? SIGTERM : SIGKILL);
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

const int interruptedStatus = 128 + SIGINT;

void WriteBeyondLimits() {
    struct sigaction ignored;
    std::memset(&ignored, 0, sizeof ignored);
    ignored.sa_handler = SIG_IGN;
    isLimitIgnored = sigaction(SIGXFSZ, &ignored, &limitBefore) == 0;
}

int RunProcess(const ProcessRequest& request, std::string& problem) {
    problem.clear();
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
    const bool isTool = !request.outputFile.empty();
    const SignalsForChild signals(isTool);
    const pid_t child = fork();
    if (child == 0) {
        if (isTool) setpgid(0, 0);
        signals.Restore();
        if (isLimitIgnored) sigaction(SIGXFSZ, &limitBefore, nullptr);
        Become(request, arguments, report[1]);
    }
    int reason = child < 0 ? errno : 0;
    close(report[1]);
    int status = -1;
    if (child > 0) {
        if (isTool) setpgid(child, child);  // whoever of the two comes first
        childProcess = child;
        signals.LetThrough();
        while (read(report[0], &reason, sizeof reason) < 0 && errno == EINTR) {
        }
        status = WaitFor(child, request.whileWaiting, request.shallEnd);
        if (isTool && status != 0) kill(-child, SIGKILL);  // what a tool that was killed has left at work
        childProcess = 0;
        if (!isTool && status > 128) modes.Restore();
    }
    close(report[0]);
    if (reason == 0) return status;
    problem = std::strerror(reason);
    return -1;
}

#endif
