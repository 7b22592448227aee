// A program that is debugged: where it shall stop, where it stands, and what it answers.
#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "debug/json.h"
#include "debug/launch.h"
#include "debug/target.h"

namespace debug {

struct Breakpoint {
    int number = 0;
    // What was asked for: a file in any spelling, with a line in it, or the name of a routine.
    std::string askedFile, routine;
    int askedLine = 0;
    // What the program has there: a full path, and a line; 0 where there is none.
    std::string file;
    int line = 0;
    std::string problem;    // why it never stops, or what it could not work out when it was met
    bool isRight = false;   // it may stop
    std::string condition;  // stops only where this is true
    int hits = 0;           // so often has it been met; it stops from the wanted time on
    int wanted = 0;         // -1: that was no number
    std::string log;        // says this, with holes "{name}", and does not stop
    bool once = false;
};

// Of the text "3"; 0 when there is none, -1 when it is no number.
int CountIn(const std::string& text);

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
    char kind = '?';       // see include/kvdebugger.h
    std::string text;      // of a String as it is
    int ref = -1;          // what it is asked about by; -1: it has no place in the program
    std::size_t left = 0;  // bytes of a long String that have not been told
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
    // Of those that have a place to stop in; "TPlayer\Hit" and "Hit".
    std::vector<std::string> NamesOfRoutines() const;

    // Looks for the place of a breakpoint, and for what is wrong with it: `isRight` and `problem` say so.
    void Settle(Breakpoint& one) const;
    // What `its` means in a line, in a With; empty where it means nothing.
    std::string MeantByIts(const std::string& file, int line) const;
    // What variables may be called in this line.
    std::vector<std::string> NamesIn(const std::string& file, int line) const;
    int NewNumber() { return ++lastNumber; }
    void TakeBreakpoints(const Session& other);
    int Add(Breakpoint breakpoint);
    bool Remove(int number);
    void SendBreakpoints();

    // The program goes on: "go", "into", "over", "out", "again".
    void Go(const std::string& how);
    // What to make of a line that the program has said. False when it is to go on with what it was told before ("again");
    // `logged` is what log points have to say.
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

    std::string ShortPath(const std::string& written) const;

private:
    struct Places {
        std::string routine, file;
        std::vector<int> lines;
        std::set<std::string> names;
    };
    std::vector<Places> places;
    std::map<std::pair<std::string, int>, std::string> meantByIts;
    std::set<std::string> namesEverywhere;
    int lastNumber = 0;

    Json Ask(const std::string& question, const char* wanted);
    Part AskForPart(const std::string& question);
    void TakePlaces(const Json& said);
    bool Stops(Breakpoint& breakpoint, std::string& logged);
    bool ForgetEnds();  // where a step was given its end; false when there are none
};

// Said when a program that is to stand does not.
extern const char* const waitsText;

// How many items a list has, "[3]".
std::size_t ItemCount(const Value& value);

// Of a file: without "./" and "a/../", where that is the same one.
std::string PlainPath(const std::string& file);

// How a value is shown: Strings as they are written.
std::string Shown(const Value& value);

}  // namespace debug
