// kv debug: the debugger at a terminal. A routine for each command; terminal.cpp has the table.
#pragma once

#include "debug/evaluate.h"
#include "debug/line_editor.h"

namespace debug {

class Terminal {
public:
    Terminal(const Launch& launch, const std::function<bool(Launch& launch)>& maker)
        : remake(maker), session(launch) {}

    int Run();

private:
    struct Row {
        const char *word, *shortWord, *usage, *help;
        void (Terminal::*perform)(const std::string& rest);
        bool onlyOnce = false;  // an empty line does not repeat it
    };
    static const std::vector<Row>& Rows();

    std::function<bool(Launch& launch)> remake;
    Session session;
    LineEditor editor;
    TerminalTurns turns;
    std::string repeated;  // what an empty line means
    std::vector<std::string> watched;
    std::size_t frame = 0;  // that is looked at
    bool stands = false;    // somewhere in the program; else before its beginning
    bool failed = false, leaves = false;
    int status = 0;

    bool Begin();
    void TellEnd();
    void Perform(const std::string& line);

    // Going on.
    void Go(const char* how);
    void End();
    void TellStop(const Stop& stop);
    void Run(const std::string&);
    void Continue(const std::string&);
    void Step(const std::string&);
    void Next(const std::string&);
    void Finish(const std::string&);
    void Until(const std::string& rest);
    void Restart(const std::string&);

    // Where it is.
    Frame Current();
    static std::vector<std::string> LinesOf(const std::string& file);
    static void TellLines(const std::string& file, int first, int last, int marked);
    std::string PlaceText(const Frame& at);
    void TellFrame();
    void List(const std::string& rest);
    void Where(const std::string&);
    void Select(const std::string& rest);
    void Up(const std::string&);
    void Down(const std::string&);

    // Breakpoints.
    Breakpoint PlaceOf(const std::string& text);
    void Break(const std::string& rest);
    void TellBreakpoint(const Breakpoint& one);
    void TellBreakpoints();
    void Delete(const std::string& rest);

    // Values.
    static void TellValue(const std::string& name, const Value& value);
    static void TellPart(const Part& part, const char* indent);
    static void TellAll(const Part& part, const std::string& what);
    void Locals(const std::string&);
    void Globals(const std::string&);
    void Print(const std::string& rest);
    void Change(const std::string& rest);
    void Objects(const std::string& rest);
    void Watch(const std::string& rest);
    void Unwatch(const std::string& rest);
    void Help(const std::string&);
    void Quit(const std::string&);
};

}  // namespace debug
