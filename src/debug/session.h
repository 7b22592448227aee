// A program that is debugged: where it shall stop, where it stands, and what it answers.
#pragma once

#include <string>
#include <vector>

#include "debug/json.h"
#include "debug/launch.h"
#include "debug/target.h"

namespace debug {

struct Breakpoint {
    int number = 0;
    std::string file;  // full path
    int line = 0;
    std::string condition;  // stops only where this is true
    int hits = 0;           // so often has it been met; it stops from the wanted time on
    int wanted = 0;
    std::string log;  // says this, with holes "{name}", and does not stop
    bool once = false;
    bool ofRoutine = false;  // it was asked for by a name
};

struct Stop {
    std::string reason;  // "breakpoint", "step", "pause", "failure"
    std::string text;    // of a failure
    int breakpoint = 0;  // its number
};

struct Frame {
    std::string routine, file;
    int line = 0;
};

// A variable, or what an expression yields.
struct Value {
    std::string name, type;
    char kind = '?';   // see include/kvdebugger.h
    std::string text;  // of a String as it is
    int ref = -1;      // what it is asked about by; -1: it has no place in the program
};

struct Part {
    std::vector<Value> items;
    std::size_t total = 0;
};

struct TypeCount {
    std::string name;
    std::size_t count = 0;
};

// The line is cut while something is asked.
struct Gone {};

class Session {
public:
    explicit Session(const Launch& what) : launch(what) {}

    Launch launch;
    Target target;
    std::vector<Breakpoint> breakpoints;

    // The program stands before its first statement then. Begin: its target is there already.
    bool Start(const std::string& folder, bool catches, std::string& problem);
    bool Begin(std::string& problem);

    // Where statements stand. The full path of a file of the program that is named by its way or the end of its path; a
    // line that a run can stop at, from this one on; the first one of a routine. Empty, or 0, where there is none.
    std::string FindFile(const std::string& name) const;
    int FindLine(const std::string& file, int line) const;
    bool FindRoutine(const std::string& name, std::string& file, int& line) const;

    int NewNumber() { return ++lastNumber; }
    void TakeBreakpoints(const Session& other);
    int Add(Breakpoint breakpoint);
    bool Remove(int number);
    void SendBreakpoints();

    // The program goes on: "go", "into", "over", "out".
    void Go(const std::string& how);
    // What to make of a line that the program has said. False when the program has gone on; `logged` is what log points
    // have to say.
    bool TakesStop(const std::string& line, Stop& stop, std::string& logged);

    // While it stands.
    std::vector<Frame> Stack(std::size_t first, std::size_t count, std::size_t& total);
    Part Locals(std::size_t frame);
    Part Globals();
    Part Consts();
    Part Items(const Value& value, std::size_t first, std::size_t count);
    Part Objects(const std::string& type, std::size_t first, std::size_t count);
    std::vector<TypeCount> Types();
    bool Set(const Value& place, const Value& value);

    std::string ShortPath(const std::string& file) const;

private:
    struct Places {
        std::string routine, file;
        std::vector<int> lines;
    };
    std::vector<Places> places;
    int lastNumber = 0;

    Json Ask(const std::string& question);
    Part AskForPart(const std::string& question);
    bool Stops(Breakpoint& breakpoint, std::string& logged);
    bool ForgetEnds();  // where a step was given its end; false when there are none
};

// Said when a program that is to stand does not.
extern const char* const waitsText;

// How many items a list has, "[3]".
std::size_t ItemCount(const Value& value);

// How a value is shown: Strings in quotes.
std::string Shown(const Value& value);

}  // namespace debug
