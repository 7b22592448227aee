#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>

#include "base/token_text.h"
#include "debug/terminal.h"

namespace debug {

namespace {

// "12 if name = "a" log {x}": what stands before the first word and behind each of them, none of which is in a text. A
// log text takes all that follows; "hit" may be a name in a condition.
std::map<std::string, std::string> ClausesOf(const std::string& text) {
    std::map<std::string, std::string> clauses;
    std::string current;
    bool isQuoted = false;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == '"') isQuoted = !isQuoted;
        const std::size_t end = std::min(text.find(' ', at), text.size());
        const std::string word = text.substr(at, end - at);
        const bool isWord = at > 0 && text[at - 1] == ' ';
        const bool counts = end + 1 < text.size() && (current.empty() || IsDigit(text[end + 1]));
        const bool begins = word == "if" || word == "log" || (word == "hit" && counts);
        if (isWord && begins && !isQuoted && current != "log") {
            current = word;
            clauses[current].clear();
            at = std::min(end + 1, text.size());
        } else {
            clauses[current] += text[at++];
        }
    }
    for (auto& [word, clause] : clauses) clause.erase(clause.find_last_not_of(' ') + 1);
    return clauses;
}

}  // namespace

// "12", "lib/game.kvl:12", "Draw", "TPlayer\Hit".
Breakpoint Terminal::PlaceOf(const std::string& text) {
    Breakpoint breakpoint;
    const std::size_t colon = text.rfind(':');
    breakpoint.askedLine = std::max(CountIn(colon == std::string::npos ? text : text.substr(colon + 1)), 0);
    if (breakpoint.askedLine == 0)
        breakpoint.routine = text;
    else if (colon != std::string::npos)
        breakpoint.askedFile = text.substr(0, colon);
    else
        breakpoint.askedFile = stands ? Current().file : session.launch.source;
    session.Settle(breakpoint);
    if (breakpoint.line > 0) return breakpoint;
    if (!breakpoint.routine.empty()) throw Refusal{breakpoint.problem};
    if (breakpoint.file.empty()) throw Refusal{"the program has no file " + breakpoint.askedFile};
    throw Refusal{"the program cannot stop at " + text + " or behind it"};
}

void Terminal::Break(const std::string& rest) {
    if (rest.empty()) return TellBreakpoints();
    std::map<std::string, std::string> clauses = ClausesOf(rest);
    Breakpoint breakpoint = PlaceOf(clauses[""]);
    for (const auto& [word, clause] : clauses)
        if (clause.empty()) throw Refusal{"something is missing behind \"" + word + "\""};
    breakpoint.condition = clauses["if"];
    breakpoint.wanted = CountIn(clauses["hit"]);
    breakpoint.log = clauses["log"];
    session.Settle(breakpoint);
    if (!breakpoint.isRight) throw Refusal{breakpoint.problem};
    session.Add(breakpoint);
    TellBreakpoint(session.breakpoints.back());
}

void Terminal::TellBreakpoint(const Breakpoint& one) {
    if (one.line > 0)
        std::printf("breakpoint %d at %s:%d", one.number, session.ShortPath(one.file).c_str(), one.line);
    else
        std::printf("breakpoint %d nowhere", one.number);
    if (!one.condition.empty()) std::printf(" if %s", one.condition.c_str());
    if (one.wanted > 0) std::printf(" hit %d", one.wanted);
    if (!one.log.empty()) std::printf(" log %s", one.log.c_str());
    if (!one.isRight) std::printf(": %s", one.problem.c_str());
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
