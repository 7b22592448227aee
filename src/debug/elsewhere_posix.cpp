// Programs in a terminal of the editor's. The editor runs kv there, which runs the program and is its ward: it connects
// twice to kv dap, for the program and for itself, and says "interrupt" and at last "status N"; whatever it is told,
// and the end of the line, ends the program.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "base/utf8.h"
#include "debug/launch.h"
#include "debug/streams.h"
#include "debug/target.h"

namespace debug {

namespace {

const char wardWord[] = "--debuggee";
// Behind it: where to connect, and the program's command.
enum Words : std::size_t { wordAt, placeAt, programAt };

constexpr int patience = 60000;  // milliseconds in which the program is to come

bool AddressOf(const std::string& place, sockaddr_un& address) {
    std::memset(&address, 0, sizeof address);
    address.sun_family = AF_UNIX;
    if (place.size() >= sizeof address.sun_path) return false;
    std::memcpy(address.sun_path, place.c_str(), place.size());
    return true;
}

int Connect(const std::string& place, int flags) {
    sockaddr_un address;
    const int made = socket(AF_UNIX, SOCK_STREAM | flags, 0);
    if (made != -1 && AddressOf(place, address) &&
        connect(made, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return made;
    if (made != -1) close(made);
    return -1;
}

volatile sig_atomic_t wasInterrupted = 0;
void NoteInterrupt(int) { wasInterrupted = 1; }
void NoteNothing(int) {}

void Hear(int number, void (*handler)(int)) {
    struct sigaction noted;
    std::memset(&noted, 0, sizeof noted);
    noted.sa_handler = handler;
    sigaction(number, &noted, nullptr);
}

void Say(int ward, const std::string& text) { send(ward, text.data(), text.size(), MSG_NOSIGNAL); }

// Returns the exit status, 128 + n when signal n ended it.
int WatchOver(pid_t process, int ward, const sigset_t& heard) {
    pollfd asked = {ward, POLLIN, 0};
    for (;;) {
        int status = 0;
        if (waitpid(process, &status, WNOHANG) == process)
            return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        if (wasInterrupted != 0) Say(ward, "interrupt\n");
        wasInterrupted = 0;
        if (ppoll(&asked, 1, nullptr, &heard) <= 0) continue;
        kill(process, SIGKILL);
        asked.fd = -1;
    }
}

}  // namespace

const bool Offer::isPossible = true;

Offer::~Offer() {
    if (listening != -1) close(listening);
    std::error_code ignored;
    if (!folder.empty()) std::filesystem::remove_all(PathOf(folder), ignored);
}

bool Offer::Make(std::string& problem) {
    std::error_code failed;
    folder = TextOf(std::filesystem::temp_directory_path(failed) / "kv-debug-XXXXXX");
    sockaddr_un address;
    listening = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool isMade = mkdtemp(folder.data()) != nullptr;
    if (!isMade) folder.clear();
    if (isMade && listening != -1 && AddressOf(folder + "/line", address) &&
        bind(listening, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
        listen(listening, 2) == 0)
        return true;
    problem = std::string("there is no way to a program in a terminal: ") + std::strerror(errno);
    return false;
}

std::vector<std::string> Offer::Command(const std::string& kv,
                                        const std::vector<std::string>& program) const {
    std::vector<std::string> command = {kv, wardWord, folder + "/line"};
    command.insert(command.end(), program.begin(), program.end());
    return command;
}

Offer::Event Offer::Wait(int client, Target& target) {
    for (;;) {
        pollfd all[] = {{client, POLLIN, 0}, {listening, POLLIN, 0}};
        const int ready = poll(all, 2, patience);
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return Event::TooLate;
        if (all[0].revents != 0) return Event::Client;
        const int come = accept4(listening, nullptr, nullptr, SOCK_CLOEXEC);
        if (come == -1) return Event::TooLate;
        if (ward != -1) {
            target.Join(come, ward);
            return Event::Came;
        }
        ward = come;
    }
}

void Target::Join(int lineToIt, int wardOfIt) {
    process = elsewhere;
    line = lineToIt;
    orders = fcntl(line, F_DUPFD_CLOEXEC, 0);
    ward = wardOfIt;
}

// Who started it says how it has ended, unless that was killed as well; then the program ends when its line is cut.
int Target::EndElsewhere(bool kills) {
    if (kills) send(ward, "end\n", 4, MSG_NOSIGNAL);
    while (ward != -1) Read(ward, said);
    const std::size_t at = said.find("status ");
    return at == std::string::npos ? 128 + SIGKILL : std::atoi(said.c_str() + at + 7);
}

bool IsDebuggeeCommand(const std::vector<std::string>& words) {
    return words.size() > programAt && words[wordAt] == wardWord;
}

int RunDebuggee(const std::vector<std::string>& words) {
    const int ward = Connect(words[placeAt], SOCK_CLOEXEC), line = Connect(words[placeAt], 0);
    if (ward == -1 || line == -1) return 1;  // nobody is there any more
    sigset_t kept, before;
    sigemptyset(&kept);
    for (const int number : {SIGCHLD, SIGINT}) sigaddset(&kept, number);
    Hear(SIGCHLD, NoteNothing);
    Hear(SIGINT, NoteInterrupt);
    sigprocmask(SIG_BLOCK, &kept, &before);
    const pid_t process = fork();
    if (process == 0) {
        sigprocmask(SIG_SETMASK, &before, nullptr);
        BecomeProgram({words.begin() + programAt, words.end()}, line);
    }
    close(line);
    const int status = process > 0 ? WatchOver(process, ward, before) : 1;
    Say(ward, "status " + std::to_string(status) + "\n");
    return status;
}

}  // namespace debug
