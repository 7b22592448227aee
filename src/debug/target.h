// The program that is debugged, as a process, and the line to the debugger's side in it.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace debug {

class Target {
public:
    enum class Event {
        Line,         // what the program's side has said
        Output,       // what the program has written, where that is caught
        Errors,       // and on its error stream
        Client,       // the other descriptor has something to read
        Interrupted,  // Ctrl-C
        Ended         // the line is cut
    };

    Target() = default;
    ~Target();
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

    // Returns false and sets `problem` when the program cannot be run. With `catches` its streams are not those of kv:
    // it has no input, and what it writes comes as events.
    bool Start(const std::vector<std::string>& command, bool catches, std::string& problem);
    bool IsRunning() const { return process != 0; }
    void Send(const std::string& text) const;
    // Waits for what comes next; of `client`, a descriptor, too, unless that is -1.
    Event Wait(int client, std::string& text);
    // Returns the exit status, 128 + n when signal n ended it; 0 when it does not run.
    int End(bool kills);

private:
    int process = 0, line = -1, output = -1, errors = -1;
    std::string unread;

    bool TakeLine(std::string& text);
    static bool Read(int& from, std::string& text);
};

// Does the work, and returns what has been written to the error stream meanwhile.
std::string ErrorsOf(const std::function<void()>& work);

// While one lives, Ctrl-C ends neither kv nor the program, and the terminal has the modes of whoever's turn it is.
class TerminalTurns {
public:
    TerminalTurns();
    ~TerminalTurns();
    TerminalTurns(const TerminalTurns&) = delete;
    TerminalTurns& operator=(const TerminalTurns&) = delete;

    void ToUser();
    void ToProgram();
};

}  // namespace debug
