#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "debug/launch.h"
#include "debug/streams.h"
#include "debug/target.h"

namespace debug {

namespace {

// The end with this number stays with kv.
bool Pipe(int (&ends)[2], int own) { return pipe(ends) == 0 && fcntl(ends[own], F_SETFD, FD_CLOEXEC) == 0; }

void TakeAs(int descriptor, int from) {
    dup2(from, descriptor);
    if (from != descriptor) close(from);
}

}  // namespace

void BecomeProgram(const std::vector<std::string>& command, int line) {
    std::vector<char*> words;
    words.reserve(command.size() + 1);
    for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    signal(SIGINT, SIG_DFL);
    signal(SIGPIPE, SIG_DFL);
    setenv("KV_DEBUG_LISTENS", std::to_string(line).c_str(), 1);
    execv(words[0], words.data());
    _exit(127);
}

bool Target::Start(const std::vector<std::string>& command, const std::string& folder, bool catches,
                   std::string& problem) {
    int sockets[2], in[2] = {-1, -1}, out[2] = {-1, -1}, err[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, sockets) != 0 ||
        (catches && (!Pipe(in, 1) || !Pipe(out, 0) || !Pipe(err, 0)))) {
        problem = std::strerror(errno);
        return false;
    }
    fcntl(sockets[0], F_SETFD, FD_CLOEXEC);
    process = fork();
    if (process == 0) {
        if (catches) {
            setpgid(0, 0);
            TakeAs(STDIN_FILENO, in[0]);
            TakeAs(STDOUT_FILENO, out[1]);
            TakeAs(STDERR_FILENO, err[1]);
        }
        if (!folder.empty() && chdir(folder.c_str()) != 0) _exit(127);
        BecomeProgram(command, sockets[1]);
    }
    for (int* end : {&sockets[1], &in[0], &out[1], &err[1]}) Close(*end);
    line = sockets[0];
    orders = fcntl(line, F_DUPFD_CLOEXEC, 0);
    input = in[1];
    output = out[0];
    errors = err[0];
    if (input != -1) fcntl(input, F_SETFL, O_NONBLOCK);
    if (process > 0) return true;
    process = 0;
    problem = std::strerror(errno);
    return false;
}

bool Target::Type(const std::string& text) const {
    void (*const before)(int) = signal(SIGPIPE, SIG_IGN);  // it may have ended just now
    const bool taken =
        input != -1 && write(input, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    signal(SIGPIPE, before);
    return taken;
}

int Target::EndHere(bool kills) const {
    const pid_t number = static_cast<pid_t>(process);
    if (kills && number > 0) kill(number, SIGKILL);  // -1 would be everybody
    int status = 0;
    while (waitpid(number, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace debug
