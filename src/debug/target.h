// The program that is debugged, as a process, and the line to the debugger's side in it.
#pragma once

#include <chrono>
#include <cstdint>
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
        Late,         // no line has followed a Pause soon
        Ended         // the line is cut
    };

    Target() = default;
    ~Target();
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

    // Returns false and sets `problem` when the program cannot be run. In the folder, or where kv is. With `catches` its
    // streams are not those of kv: what it writes comes as events, and what it reads is given to it.
    bool Start(const std::vector<std::string>& command, const std::string& folder, bool catches,
               std::string& problem);
    // Takes a program that runs elsewhere: its line, and that of its ward (see Offer).
    void Join(int lineToIt, int wardOfIt);
    bool IsRunning() const { return process != 0; }
    void Send(const std::string& text);
    // Makes it stand.
    void Pause();
    // Gives it something to read. False when it does not take that.
    bool Type(const std::string& text) const;
    // Waits for what comes next; of `client`, a descriptor, too, unless that is -1.
    Event Wait(int client, std::string& text);
    // Returns the exit status, 128 + n when signal n ended it; 0 when it does not run.
    int End(bool kills);

private:
    static constexpr std::intptr_t elsewhere = -1;  // in place of its number

    std::intptr_t process = 0;   // its number, or what Windows knows it by
    int line = -1, orders = -1;  // from it and to it
    int input = -1, output = -1, errors = -1, ward = -1;
    std::string unread, unsent;
    std::string said;  // by the ward
    using Time = std::chrono::steady_clock::time_point;
    Time lastOutput;
    Time late = Time::max();  // when there is no line until then, that is told

    int EndHere(bool kills) const;
    int EndElsewhere(bool kills);
    int RestLeft() const;
    int LongestWait(int rest) const;
    bool ReadOutput(int& from, std::string& text);
    bool TakeLine(std::string& text);
};

// Waits for a program that is started elsewhere by somebody else.
class Offer {
public:
    static const bool isPossible;  // on this system
    enum class Event { Came, Client, TooLate };

    Offer() = default;
    ~Offer();
    Offer(const Offer&) = delete;
    Offer& operator=(const Offer&) = delete;

    bool Make(std::string& problem);
    // What is to be run there.
    std::vector<std::string> Command(const std::string& kv, const std::vector<std::string>& program) const;
    // Client: that descriptor has something to read.
    Event Wait(int client, Target& target);

private:
    std::string folder;
    int listening = -1, ward = -1;
};

// In a new process: runs the program, which finds its line to kv at this descriptor.
[[noreturn]] void BecomeProgram(const std::vector<std::string>& command, int line);

// Whether Ctrl-C was pressed since the last time.
bool TakeInterrupt();

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
