// The debugger's side in the program: stops it where it is told to, and answers questions about it while it stands. kv
// compiles this once and links it to programs that kv debug and kv dap run.
//
// The environment variable KV_DEBUG_LISTENS names the line to kv (kvdebugger_line.cpp). Questions are lines of words with
// tabs between them; events and answers are lines of JSON, one object each. A question comes while the program stands,
// a command ("breaks", "pause") at any time: the next statement looks, or whoever waits for input or sleeps.
#include "kvdebugger_talk.h"
#include "kvfailure.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace kvdebug {

Debugger* debugger = nullptr;

// ---- Lines ----------------------------------------------------------------------------------------------------------

namespace {

bool TakeLine(Words& words) {
    const std::size_t end = debugger->unread.find('\n');
    if (end == std::string::npos) return false;
    words.assign(1, "");
    for (const char c : debugger->unread.substr(0, end)) {
        if (c == '\t')
            words.emplace_back();
        else
            words.back() += c;
    }
    debugger->unread.erase(0, end + 1);
    return true;
}

// ---- Commands -------------------------------------------------------------------------------------------------------

void TakeBreaks(const Words& words) {
    std::set<int>& lines = debugger->breaks[words[1]];
    lines.clear();
    for (std::size_t i = 2; i < words.size(); ++i) lines.insert(std::atoi(words[i].c_str()));
    debugger->breakLines.clear();
    for (const auto& file : debugger->breaks) {
        for (const int line : file.second) {
            const std::size_t at = static_cast<std::size_t>(line);
            if (debugger->breakLines.size() <= at) debugger->breakLines.resize(at + 1);
            debugger->breakLines[at] = true;
        }
    }
}

const struct {
    const char* word;
    Mode mode;
} leaving[] = {{"go", Mode::Run}, {"into", Mode::Into}, {"over", Mode::Over}, {"out", Mode::Out}};

// Whether the program goes on. "again" does what the command before has begun.
bool Obey(const Words& words) {
    Answer(words);
    if (words[0] == "breaks") TakeBreaks(words);
    if (words[0] == "skip") debugger->skipped.push_back(words[1]);
    if (words[0] == "pause") debugger->pauses = true;
    for (const auto& row : leaving) {
        if (words[0] != row.word) continue;
        debugger->mode = row.mode;
        debugger->depth = debugger->frames.size();
        if (!debugger->frames.empty()) debugger->from = debugger->frames.back();
        return true;
    }
    return words[0] == "again";
}

void Stand() {
    Words words;
    do {
        while (!TakeLine(words)) ReadMore();
    } while (!Obey(words));
    debugger->told.clear();
    debugger->flags.clear();
    debugger->pauses = false;
}

const Frame nowhere = {"", "", 0, 0};

// The text is that of a failure; of a breakpoint, which kv may then take no notice of, why it stands nevertheless.
void Stop(const char* reason, const char* text) {
    std::cout.flush();
    std::fflush(stdout);
    Say(std::string("{\"event\":\"stop\",\"reason\":\"") + reason + "\",\"text\":" + Quoted(text) + "," +
        Place(debugger->frames.empty() ? nowhere : debugger->frames.back()) + "}");
    Stand();
}

// What has come while the program ran.
void ReadMail() {
    debugger->hasMail = 0;
    while (HasMore(0)) ReadMore();
    for (Words words; TakeLine(words);) Obey(words);
}

// While the program waits for input or sleeps, where it can be looked at as well.
void HearWaiting() {
    ReadMail();
    if (debugger->pauses) Stop("pause", "");
}

void SleepHearing(double milliseconds) {
    typedef std::chrono::steady_clock Clock;
    const auto end = Clock::now() + std::chrono::nanoseconds(static_cast<long long>(milliseconds * 1e6));
    for (Clock::duration left; (left = end - Clock::now()).count() > 0;) {
        const double rest = std::chrono::duration<double, std::milli>(left).count();
        if (HasMore(static_cast<int>(std::ceil(rest)))) HearWaiting();
    }
}

// ---- What the program does ------------------------------------------------------------------------------------------

bool IsSkipped(const char* file) {
    for (const std::string& folder : debugger->skipped)
        if (std::strncmp(file, folder.c_str(), folder.size()) == 0) return true;
    return false;
}

bool IsBreak(const char* file, int line) {
    const std::size_t at = static_cast<std::size_t>(line);
    if (at >= debugger->breakLines.size() || !debugger->breakLines[at]) return false;
    const auto found = debugger->breaks.find(file);
    return found != debugger->breaks.end() && found->second.count(line) != 0;
}

// A step ends at another line.
bool EndsStep(const char* file, int line) {
    const std::size_t depth = debugger->frames.size();
    if (debugger->mode == Mode::Run || depth > debugger->depth) {
        if (debugger->mode != Mode::Into) return false;
    } else if (depth == debugger->depth) {
        if (debugger->mode == Mode::Out) return false;
        if (line == debugger->from.line && std::strcmp(file, debugger->from.file) == 0) return false;
    }
    return !IsSkipped(file);
}

// Until its first statement it stands where it is called.
void Enter(const char* name) {
    Frame entered = debugger->frames.empty() ? nowhere : debugger->frames.back();
    entered.routine = name;
    entered.locals = debugger->locals.size();
    debugger->frames.push_back(entered);
}

void Leave(const char*) {
    if (!debugger->frames.empty()) debugger->frames.pop_back();
}

void Statement(int line, const char* file) {
    if (debugger->frames.empty()) return;
    Frame& frame = debugger->frames.back();
    frame.file = file;
    frame.line = line;
    if (debugger->hasMail != 0) ReadMail();
    const bool steps = debugger->mode != Mode::Run && EndsStep(file, line);
    const char* const reason = debugger->pauses ? "pause" : steps ? "step" : "";
    if (IsBreak(file, line))
        Stop("breakpoint", reason);
    else if (*reason != '\0')
        Stop(reason, "");
}

void Variable(const char*, const char*, const char*, int) {}
void Pause() {}
void End() { debugger->frames.clear(); }

void AtFailure(const char* text) { Stop("failure", text); }

void TellTables() {
    std::string json;
    for (const Places* row = program.places; row->routine != nullptr; ++row)
        json += std::string(json.empty() ? "{" : ",{") + "\"routine\":" + Quoted(row->routine) +
                ",\"file\":" + Quoted(row->file) + ",\"lines\":\"" + row->lines + "\",\"names\":\"" +
                row->names + "\"}";
    Say("{\"event\":\"start\",\"places\":[" + json + "]}");
}

const Listener listener = {Enter, Leave, Statement, Variable, Pause, End};

// Before anything of the program runs, but behind what tells of failures.
__attribute__((constructor(102))) void Begin() {
    const char* name = std::getenv("KV_DEBUG_LISTENS");
    if (name == nullptr) return;
    static const std::ios_base::Init streams;  // which are there later only
    debugger = new Debugger();
    OpenLine(name);
    __kvDebuggers<void>::atFailure = AtFailure;
    HearBesideInput(HearWaiting);
    TheState().sleep = SleepHearing;
    TheState().listener = &listener;
    TellTables();
    Stand();
}

}  // namespace

std::size_t NoteLocal(const Value& value) {
    debugger->locals.push_back(value);
    return debugger->locals.size() - 1;
}

void ForgetLocals(std::size_t left) {
    if (left < debugger->locals.size()) debugger->locals.resize(left);
}

}  // namespace kvdebug
