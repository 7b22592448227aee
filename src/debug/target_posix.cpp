#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "debug/launch.h"
#include "debug/target.h"

namespace debug {

const char* const noDebugger = "";

namespace {

volatile sig_atomic_t wasInterrupted = 0;
void NoteInterrupt(int) { wasInterrupted = 1; }

struct sigaction interruptBefore;
struct termios modesOfUser, modesOfProgram;
bool hasTerminal = false;

void Close(int& descriptor) {
    if (descriptor != -1) close(descriptor);
    descriptor = -1;
}

bool Pipe(int (&ends)[2]) { return pipe(ends) == 0 && fcntl(ends[0], F_SETFD, FD_CLOEXEC) == 0; }

void TakeAs(int descriptor, int from) {
    dup2(from, descriptor);
    if (from != descriptor) close(from);
}

}  // namespace

Target::~Target() { End(true); }

bool Target::Start(const std::vector<std::string>& command, bool catches, std::string& problem) {
    std::vector<char*> words;
    words.reserve(command.size() + 1);
    for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    int sockets[2], out[2] = {-1, -1}, err[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, sockets) != 0 || (catches && (!Pipe(out) || !Pipe(err)))) {
        problem = std::strerror(errno);
        return false;
    }
    fcntl(sockets[0], F_SETFD, FD_CLOEXEC);
    process = fork();
    if (process == 0) {
        if (catches) {
            setpgid(0, 0);
            TakeAs(STDIN_FILENO, open("/dev/null", O_RDONLY));
            TakeAs(STDOUT_FILENO, out[1]);
            TakeAs(STDERR_FILENO, err[1]);
        }
        signal(SIGINT, SIG_DFL);
        setenv("KV_DEBUG_LISTENS", std::to_string(sockets[1]).c_str(), 1);
        execv(words[0], words.data());
        _exit(127);
    }
    for (int* end : {&sockets[1], &out[1], &err[1]}) Close(*end);
    line = sockets[0];
    output = out[0];
    errors = err[0];
    unread.clear();
    if (process > 0) return true;
    process = 0;
    problem = std::strerror(errno);
    return false;
}

void Target::Send(const std::string& text) const {
    const std::string whole = text + "\n";
    for (std::size_t at = 0; at < whole.size();) {
        const ssize_t sent = send(line, whole.data() + at, whole.size() - at, MSG_NOSIGNAL);
        if (sent < 0 && errno != EINTR) return;
        if (sent > 0) at += static_cast<std::size_t>(sent);
    }
}

bool Target::TakeLine(std::string& text) {
    const std::size_t end = unread.find('\n');
    if (end == std::string::npos) return false;
    text = unread.substr(0, end);
    unread.erase(0, end + 1);
    return true;
}

// False at its end, where it is closed.
bool Target::Read(int& from, std::string& text) {
    char bytes[65536];
    const ssize_t count = read(from, bytes, sizeof bytes);
    if (count > 0) text.append(bytes, static_cast<std::size_t>(count));
    if (count == 0 || (count < 0 && errno != EINTR)) Close(from);
    return count > 0;
}

// What the program has written comes before what its end, or its next stop, is.
Target::Event Target::Wait(int client, std::string& text) {
    text.clear();
    for (;;) {
        if (wasInterrupted != 0) {
            wasInterrupted = 0;
            return Event::Interrupted;
        }
        pollfd all[] = {{output, POLLIN, 0}, {errors, POLLIN, 0}, {line, POLLIN, 0}, {client, POLLIN, 0}};
        const bool isKnown = unread.find('\n') != std::string::npos;
        if (line == -1 && !isKnown) return Event::Ended;
        if (poll(all, 4, isKnown ? 0 : -1) < 0) continue;
        if (all[0].revents != 0 && Read(output, text)) return Event::Output;
        if (all[1].revents != 0 && Read(errors, text)) return Event::Errors;
        if (TakeLine(text)) return Event::Line;
        if (all[2].revents != 0 && !Read(line, unread) && line == -1) return Event::Ended;
        if (all[3].revents != 0) return Event::Client;
    }
}

int Target::End(bool kills) {
    if (!IsRunning()) return 0;
    if (kills) kill(process, SIGKILL);
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    process = 0;
    for (int* descriptor : {&line, &output, &errors}) Close(*descriptor);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

std::string ErrorsOf(const std::function<void()>& work) {
    std::FILE* const kept = std::tmpfile();
    const int own = dup(STDERR_FILENO);
    if (kept != nullptr) dup2(fileno(kept), STDERR_FILENO);
    work();
    dup2(own, STDERR_FILENO);
    close(own);
    std::string text;
    if (kept == nullptr) return text;
    std::rewind(kept);
    for (int c = std::getc(kept); c != EOF; c = std::getc(kept)) text += static_cast<char>(c);
    std::fclose(kept);
    return text;
}

TerminalTurns::TerminalTurns() {
    struct sigaction noted;
    std::memset(&noted, 0, sizeof noted);
    noted.sa_handler = NoteInterrupt;  // without SA_RESTART: whoever waits hears of it
    sigaction(SIGINT, &noted, &interruptBefore);
    hasTerminal = tcgetattr(STDIN_FILENO, &modesOfUser) == 0;
    modesOfProgram = modesOfUser;
}

TerminalTurns::~TerminalTurns() {
    ToUser();
    sigaction(SIGINT, &interruptBefore, nullptr);
}

void TerminalTurns::ToUser() {
    if (!hasTerminal) return;
    tcgetattr(STDIN_FILENO, &modesOfProgram);
    tcsetattr(STDIN_FILENO, TCSADRAIN, &modesOfUser);
}

void TerminalTurns::ToProgram() {
    wasInterrupted = 0;
    if (hasTerminal) tcsetattr(STDIN_FILENO, TCSADRAIN, &modesOfProgram);
}

}  // namespace debug
