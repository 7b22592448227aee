#ifndef _WIN32

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>

#include "kv/platform.h"
#include "kv/ticks_posix.h"

namespace {

// The programs that run, to which signals to kv are passed on; 0 is none. A tool leads a group of its own, in which are
// all the programs that it starts.
volatile sig_atomic_t children[mostAtOnce];

// What a signal did for kv's caller that tells of a file beyond the limit of its size.
struct sigaction limitBefore;
bool isLimitIgnored = false;

void PassOn(int number) {
    for (const volatile sig_atomic_t& child : children) {
        if (child > 0) kill(static_cast<pid_t>(child), number);
    }
}

void SignalGroups(int number) {
    for (const volatile sig_atomic_t& child : children) {
        if (child > 0) kill(-static_cast<pid_t>(child), number);
    }
}

// Whether the program has ended, or is none.
bool HasEnded(pid_t child) { return child <= 0 || waitpid(child, nullptr, WNOHANG) != 0; }

// Ends tools with all that they have started: first as the signal asks them to, so that they can tidy up, and those that
// are left a moment later for good.
void EndGroups(int number) {
    const int steps = 50, milliseconds = 10;
    bool ended[mostAtOnce] = {};
    SignalGroups(number);
    for (int i = 0; i < steps; ++i) {
        bool all = true;
        for (std::size_t at = 0; at < mostAtOnce; ++at) {
            ended[at] = ended[at] || HasEnded(static_cast<pid_t>(children[at]));
            all = all && ended[at];
        }
        if (all) break;
        poll(nullptr, 0, milliseconds);
    }
    SignalGroups(SIGKILL);
}

// For kv at work: nothing goes on working, no line is left on the terminal, and the signal ends kv as it would have
// done.
void EndWork(int number) {
    EraseErrorLine();
    EndGroups(number);
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
        sigemptyset(&held_);
        for (const int number : numbers) sigaddset(&held_, number);
        sigprocmask(SIG_BLOCK, &held_, &maskBefore_);
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

    void HoldBack() const { sigprocmask(SIG_BLOCK, &held_, nullptr); }
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
    sigset_t held_;
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

int StatusOf(int status) { return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status); }

int WaitFor(pid_t child, const std::function<void()>& whileWaiting, const std::function<bool()>& shallEnd) {
    const Ticks ticks(whileWaiting || shallEnd);
    const int patience = 10;  // ticks until a program that takes no notice is killed
    int status = 0, asked = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) return 1;
        if (whileWaiting) whileWaiting();
        if (shallEnd && shallEnd()) kill(child, ++asked < patience ? SIGTERM : SIGKILL);
    }
    return StatusOf(status);
}

// Starts a program and waits until it has begun, which is its number. Signals are held back meanwhile. 0, and why, if it
// could not be started.
pid_t Start(const ProcessRequest& request, const SignalsForChild& signals, std::string& problem) {
    std::vector<char*> arguments;
    for (const std::string& argument : request.arguments)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    int report[2];
    if (pipe(report) != 0) {
        problem = std::strerror(errno);
        return 0;
    }
    fcntl(report[0], F_SETFD, FD_CLOEXEC);
    fcntl(report[1], F_SETFD, FD_CLOEXEC);
    const bool isTool = !request.outputFile.empty();
    const pid_t child = fork();
    if (child == 0) {
        if (isTool) setpgid(0, 0);
        signals.Restore();
        if (isLimitIgnored) sigaction(SIGXFSZ, &limitBefore, nullptr);
        Become(request, arguments, report[1]);
    }
    int reason = child < 0 ? errno : 0;
    close(report[1]);
    if (child > 0) {
        if (isTool) setpgid(child, child);  // whoever of the two comes first
        while (read(report[0], &reason, sizeof reason) < 0 && errno == EINTR) {
        }
        if (reason != 0) waitpid(child, nullptr, 0);
    }
    close(report[0]);
    if (reason == 0) return child;
    problem = std::strerror(reason);
    return 0;
}

// Tools at work side by side.
class ToolRun {
public:
    explicit ToolRun(const std::vector<ProcessRequest>& tools) : tools_(tools), signals_(true) {
        signals_.LetThrough();
    }

    bool HasMore() const { return begun_ < tools_.size(); }
    std::size_t AtWork() const { return begun_ - done_; }
    std::size_t Done() const { return done_; }

    bool BeginNext(ProcessEnd& end) {
        std::size_t place = 0;
        while (children[place] != 0) ++place;
        signals_.HoldBack();
        children[place] = Start(tools_[begun_], signals_, end.problem);
        numbers_[place] = begun_;
        signals_.LetThrough();
        if (children[place] == 0) return false;
        ++begun_;
        return true;
    }

    // Waits until one has ended. Returns false when it has failed.
    bool WaitForOne(const std::function<void(std::size_t)>& whileWaiting, std::size_t& number,
                    ProcessEnd& end) {
        int status = 0;
        const pid_t ended = waitpid(-1, &status, 0);
        if (ended < 0 && errno == EINTR && whileWaiting) whileWaiting(done_);
        for (std::size_t place = 0; ended > 0 && place < mostAtOnce; ++place) {
            if (children[place] != ended) continue;
            number = numbers_[place];
            end.status = StatusOf(status);
            if (end.status != 0) kill(-ended, SIGKILL);  // what a tool that was killed has left at work
            children[place] = 0;
            ++done_;
            return end.status == 0;
        }
        return ended > 0 || errno == EINTR;
    }

    void EndAll() {
        EndGroups(SIGTERM);
        for (volatile sig_atomic_t& child : children) {
            if (child > 0) waitpid(static_cast<pid_t>(child), nullptr, 0);
            child = 0;
        }
    }

private:
    const std::vector<ProcessRequest>& tools_;
    const SignalsForChild signals_;
    std::size_t numbers_[mostAtOnce] = {};  // of the tool in each place
    std::size_t begun_ = 0, done_ = 0;
};

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
    const TerminalModes modes;
    const bool isTool = !request.outputFile.empty();
    const SignalsForChild signals(isTool);
    const pid_t child = Start(request, signals, problem);
    if (child == 0) return -1;
    children[0] = child;
    signals.LetThrough();
    const int status = WaitFor(child, request.whileWaiting, request.shallEnd);
    if (isTool && status != 0) kill(-child, SIGKILL);  // what a tool that was killed has left at work
    children[0] = 0;
    if (!isTool && status > 128) modes.Restore();
    return status;
}

bool RunTools(const std::vector<ProcessRequest>& tools, std::size_t atOnce,
              const std::function<void(std::size_t)>& whileWaiting, std::size_t& failed, ProcessEnd& end) {
    ToolRun run(tools);
    const Ticks ticks(static_cast<bool>(whileWaiting));
    while (run.HasMore() || run.AtWork() > 0) {
        end = ProcessEnd();
        failed = run.Done() + run.AtWork();
        const bool begins = run.HasMore() && run.AtWork() < atOnce;
        if (begins ? run.BeginNext(end) : run.WaitForOne(whileWaiting, failed, end)) continue;
        run.EndAll();
        return false;
    }
    return true;
}

std::size_t CoreCount() {
    const long count = sysconf(_SC_NPROCESSORS_ONLN);
    return count < 1 ? 1 : std::min(static_cast<std::size_t>(count), mostAtOnce);
}

#endif
