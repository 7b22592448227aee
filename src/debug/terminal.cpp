#include "debug/terminal.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "base/utf8.h"

namespace debug {

namespace {
constexpr std::size_t framesShown = 20;
constexpr int linesAround = 4, linesOfBeginning = 40;
}  // namespace

int Terminal::Run() {
    std::printf("kv debug: \"help\" tells the commands, \"run\" begins\n");
    if (!Begin()) return 1;
    std::string line;
    while (!leaves && editor.Read("(kv) ", line)) {
        if (line.find_first_not_of(" \t") == std::string::npos) line = repeated;
        repeated = line;
        try {
            Perform(line);
        } catch (const Refusal& refusal) {
            std::printf("%s\n", refusal.text.c_str());
        } catch (const Gone&) {
            TellEnd();
        }
    }
    return status;
}

bool Terminal::Begin() {
    std::string problem;
    stands = failed = false;
    if (session.Start("", false, problem)) return true;
    std::printf("cannot run the program: %s\n", problem.c_str());
    return false;
}

void Terminal::TellEnd() {
    turns.ToUser();
    repeated.clear();  // would begin it once more
    status = session.target.End(false);
    std::printf("the program has ended with status %d\n", status);
    leaves = !Begin();
}

void Terminal::Perform(const std::string& line) {
    std::istringstream words(line);
    std::string word, rest;
    words >> word >> std::ws;
    std::getline(words, rest);
    if (word.empty()) return;
    for (const Row& row : Rows()) {
        if (word != row.word && word != row.shortWord) continue;
        if (row.onlyOnce) repeated.clear();
        const bool needs = row.usage[0] != '\0' && row.usage[0] != '[';
        if (needs && rest.empty()) throw Refusal{std::string(row.word) + " " + row.usage};
        return (this->*row.perform)(rest);
    }
    throw Refusal{"there is no command \"" + word + "\"; \"help\" tells those that there are"};
}

// ---- Going on -------------------------------------------------------------------------------------------------------

void Terminal::Go(const char* how) {
    if (failed) return End();
    turns.ToProgram();
    std::fflush(stdout);  // before what the program writes
    session.Go(how);
    Stop stop;
    std::string text, logged;
    for (;;) {
        const Target::Event event = session.target.Wait(-1, text);
        if (event == Target::Event::Interrupted) session.target.Pause();
        if (event == Target::Event::Late) std::printf("\n%s\n", waitsText);
        if (event == Target::Event::Ended) return TellEnd();
        if (event != Target::Event::Line) continue;
        const bool stopped = session.TakesStop(text, stop, logged);
        std::printf("%s", logged.c_str());
        std::fflush(stdout);
        logged.clear();
        if (stopped) break;
        session.Go("again");
    }
    turns.ToUser();
    stands = true;
    failed = stop.reason == "failure";
    frame = 0;
    TellStop(stop);
}

void Terminal::End() {
    session.Go("go");
    throw Gone();
}

void Terminal::TellStop(const Stop& stop) {
    if (stop.reason == "pause") std::printf("\n");  // behind ^C
    if (stop.reason == "failure") std::printf("the program has failed and will end\n");
    if (stop.reason == "breakpoint") std::printf("breakpoint %d, ", stop.breakpoint);
    TellFrame();
    for (const std::string& expression : watched) {
        try {
            TellValue(expression, Evaluate(session, frame, expression));
        } catch (const Refusal& refusal) {
            std::printf("%s: %s\n", expression.c_str(), refusal.text.c_str());
        }
    }
}

void Terminal::Run(const std::string&) {
    if (stands) throw Refusal{"the program runs already; \"continue\" goes on, \"restart\" begins anew"};
    Go("go");
}

void Terminal::Continue(const std::string&) { Go("go"); }

void Terminal::Step(const std::string&) { Go("into"); }

void Terminal::Next(const std::string&) { Go("over"); }

void Terminal::Finish(const std::string&) { Go("out"); }

void Terminal::Until(const std::string& rest) {
    Breakpoint breakpoint = PlaceOf(rest);
    breakpoint.once = true;
    session.Add(breakpoint);
    Go("go");
}

// The source may have been mended meanwhile; where it cannot be made, the program stays where it is.
void Terminal::Restart(const std::string&) {
    Launch made;
    if (!remake(made)) throw Refusal{"the program stays where it is"};
    session.target.End(true);
    session.launch = made;
    leaves = !Begin();
    if (leaves) return;
    for (const Breakpoint& one : session.breakpoints)
        if (!one.isRight) TellBreakpoint(one);
    std::printf("the program stands before its beginning\n");
}

// ---- Where it is ----------------------------------------------------------------------------------------------------

Frame Terminal::Current() {
    std::size_t total = 0;
    const std::vector<Frame> frames = session.Stack(frame, 1, total);
    if (frames.empty()) throw Refusal{"the program has not begun; \"run\" begins"};
    return frames.front();
}

std::vector<std::string> Terminal::LinesOf(const std::string& file) {
    std::ifstream stream(PathOf(file));
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

void Terminal::TellLines(const std::string& file, int first, int last, int marked) {
    const std::vector<std::string> lines = LinesOf(file);
    const int all = static_cast<int>(lines.size());
    for (int i = std::max(first, 1); i <= std::min(last, all); ++i)
        std::printf("%s%5d  %s\n", i == marked ? ">" : " ", i,
                    lines[static_cast<std::size_t>(i - 1)].c_str());
}

std::string Terminal::PlaceText(const Frame& at) {
    return at.routine + " at " + session.ShortPath(at.file) + ":" + std::to_string(at.line);
}

void Terminal::TellFrame() {
    const Frame at = Current();
    std::printf("%s\n", PlaceText(at).c_str());
    TellLines(at.file, at.line, at.line, at.line);
}

// Without a place in the program: how the main file begins.
void Terminal::List(const std::string& rest) {
    if (rest.empty() && !stands) return TellLines(session.launch.source, 1, linesOfBeginning, 0);
    const Frame at = rest.empty() ? Current() : Frame();
    const Breakpoint asked = rest.empty() ? Breakpoint() : PlaceOf(rest);
    const std::string& file = rest.empty() ? at.file : asked.file;
    const int line = rest.empty() ? at.line : asked.line;
    TellLines(file, line - linesAround, line + linesAround, at.line);
}

void Terminal::Where(const std::string&) {
    std::size_t total = 0;
    const std::vector<Frame> frames = session.Stack(0, framesShown, total);
    for (std::size_t i = 0; i < frames.size(); ++i)
        std::printf("%s%3zu  %s\n", i == frame ? ">" : " ", i, PlaceText(frames[i]).c_str());
    if (total == 0) std::printf("no calls are under way\n");
    if (total > frames.size()) std::printf("      and %zu more\n", total - frames.size());
}

void Terminal::Select(const std::string& rest) {
    const std::size_t before = frame;
    char* end = nullptr;
    frame = std::strtoul(rest.c_str(), &end, 10);
    std::size_t total = 0;
    if (*end == '\0' && !session.Stack(frame, 1, total).empty()) return TellFrame();
    frame = before;
    throw Refusal{"there are " + std::to_string(total) + " calls under way"};
}

void Terminal::Up(const std::string&) { Select(std::to_string(frame + 1)); }

void Terminal::Down(const std::string&) { Select(std::to_string(frame == 0 ? 0 : frame - 1)); }

const std::vector<Terminal::Row>& Terminal::Rows() {
    static const std::vector<Row> rows = {
        {"run", "r", "", "begin", &Terminal::Run, true},
        {"continue", "c", "", "go on to the next breakpoint", &Terminal::Continue},
        {"next", "n", "", "go to the next line, over calls", &Terminal::Next},
        {"step", "s", "", "go to the next line, into calls", &Terminal::Step},
        {"out", "o", "", "go to where this routine was called", &Terminal::Finish},
        {"until", "u", "PLACE", "go to a place", &Terminal::Until},
        {"restart", "", "", "make the program and begin anew", &Terminal::Restart, true},
        {"break", "b", "[PLACE [if CONDITION] [hit N] [log TEXT]]", "stop there; alone: list the breakpoints",
         &Terminal::Break, true},
        {"delete", "d", "NUMBER", "forget a breakpoint", &Terminal::Delete, true},
        {"where", "w", "", "the calls under way", &Terminal::Where},
        {"frame", "f", "NUMBER", "look at one of them", &Terminal::Select},
        {"up", "", "", "look at the caller", &Terminal::Up},
        {"down", "", "", "look at what it has called", &Terminal::Down},
        {"list", "l", "[PLACE]", "the source around", &Terminal::List},
        {"locals", "v", "", "the Locals and parameters", &Terminal::Locals},
        {"globals", "g", "", "Globals", &Terminal::Globals},
        {"print", "p", "EXPRESSION", "a value, with its Fields or items", &Terminal::Print},
        {"set", "", "NAME = EXPRESSION", "change a variable", &Terminal::Change, true},
        {"objects", "t", "[TYPE]", "how many objects there are; those of a Type", &Terminal::Objects},
        {"watch", "", "EXPRESSION", "show it at each stop", &Terminal::Watch, true},
        {"unwatch", "", "EXPRESSION", "do so no more", &Terminal::Unwatch, true},
        {"help", "h", "", "this list", &Terminal::Help},
        {"quit", "q", "", "end the program and leave", &Terminal::Quit},
    };
    return rows;
}

int DebugInTerminal(const Launch& launch, const std::function<bool(Launch& launch)>& remake) {
    return Terminal(launch, remake).Run();
}

}  // namespace debug
