// Whose turn it is at the terminal, and what is said on the error stream meanwhile.
#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "debug/target.h"

namespace debug {

namespace {

volatile sig_atomic_t wasInterrupted = 0;
void NoteInterrupt(int) { wasInterrupted = 1; }

struct sigaction interruptBefore;
struct termios modesOfUser, modesOfProgram;
bool hasTerminal = false;

}  // namespace

bool TakeInterrupt() {
    const bool was = wasInterrupted != 0;
    wasInterrupted = 0;
    return was;
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
