#include <cstdio>
#include <cstdlib>

#include "debug/terminal.h"

namespace debug {

// "12", "lib/game.kvl:12", "Draw", "TPlayer\Hit".
Breakpoint Terminal::PlaceOf(const std::string& text) {
    Breakpoint breakpoint;
    const std::size_t colon = text.rfind(':');
    const std::string number = colon == std::string::npos ? text : text.substr(colon + 1);
    const int line = std::atoi(number.c_str());
    if (line <= 0) {
        if (session.FindRoutine(text, breakpoint.file, breakpoint.line)) return breakpoint;
        throw Refusal{"there is no Function or Method " + text + " in which the program could stop"};
    }
    if (colon != std::string::npos)
        breakpoint.file = session.FindFile(text.substr(0, colon));
    else
        breakpoint.file = stands ? Current().file : session.launch.source;
    breakpoint.line = session.FindLine(breakpoint.file, line);
    if (breakpoint.line == 0) throw Refusal{"the program cannot stop at " + text + " or behind it"};
    return breakpoint;
}

// Takes " WORD rest" off the end of the text.
std::string Terminal::TakeClause(std::string& text, const std::string& word) {
    const std::size_t at = text.find(" " + word + " ");
    if (at == std::string::npos) return "";
    const std::string clause = text.substr(at + word.size() + 2);
    text.erase(at);
    return clause;
}

void Terminal::Break(const std::string& rest) {
    if (rest.empty()) return TellBreakpoints();
    std::string place = rest;
    const std::string log = TakeClause(place, "log"), hits = TakeClause(place, "hit");
    const std::string condition = TakeClause(place, "if");
    Breakpoint breakpoint = PlaceOf(place);
    breakpoint.condition = condition;
    breakpoint.wanted = std::atoi(hits.c_str());
    breakpoint.log = log;
    session.Add(breakpoint);
    TellBreakpoint(session.breakpoints.back());
}

void Terminal::TellBreakpoint(const Breakpoint& one) {
    std::printf("breakpoint %d at %s:%d", one.number, session.ShortPath(one.file).c_str(), one.line);
    if (!one.condition.empty()) std::printf(" if %s", one.condition.c_str());
    if (one.wanted > 0) std::printf(" hit %d", one.wanted);
    if (!one.log.empty()) std::printf(" log %s", one.log.c_str());
    std::printf("%s\n",
                one.hits > 0
                    ? (", met " + std::to_string(one.hits) + (one.hits == 1 ? " time" : " times")).c_str()
                    : "");
}

void Terminal::TellBreakpoints() {
    for (const Breakpoint& one : session.breakpoints) TellBreakpoint(one);
    if (session.breakpoints.empty()) std::printf("there are no breakpoints\n");
}

void Terminal::Delete(const std::string& rest) {
    if (!session.Remove(std::atoi(rest.c_str()))) throw Refusal{"there is no breakpoint " + rest};
}

}  // namespace debug
