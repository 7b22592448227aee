// The debugger's side in the program: stops it where it is told to, and answers questions about it while it stands. kv
// compiles this once and links it to programs that kv debug and kv dap run.
//
// The environment variable KV_DEBUG_LISTENS has the number of an open socket to kv. Questions are lines of words with
// tabs between them; events and answers are lines of JSON, one object each. A question comes while the program stands,
// a command ("breaks", "pause") at any time: the system then sends a signal, and the next statement looks.
#include "kvdebugger.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>

#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

// Of kvfailure.cpp, where that is linked.
extern "C" __attribute__((weak)) void (*__kvAtFailure)(const char* text);

namespace kvdebug {

std::string NumberText(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.15g", value);
    return text;
}

bool ReadNumber(const char* text, double& value) {
    char* end = nullptr;
    value = std::strtod(text, &end);
    return end != text && *end == '\0';
}

namespace {

class Parts : public Items {
public:
    Parts() : Items(0, ULONG_MAX) {}
    std::string text;

    void Take(const Value& value, std::size_t) override {
        std::string part;
        const bool isText = value.handler->show(value.at, part) == 's';
        const char* const quote = isText ? "\"" : "";
        text += (text.empty() ? "" : ", ") + std::string(value.name) + " = " + quote + part + quote;
    }
    void TakeText(std::size_t, char, const std::string&) override {}
};

}  // namespace

std::string PartsOf(void* at, void (*list)(void* at, Items& items)) {
    Parts parts;
    list(at, parts);
    return " {" + parts.text + "}";
}

namespace {

typedef std::vector<std::string> Words;

const std::size_t longestText = 10000;  // bytes of a String that are told

// A text as JSON has it. Bytes that are no UTF-8 are kv's to mend.
std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text.substr(0, longestText)) {
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned char>(c));
        if (c == '"' || c == '\\')
            (quoted += '\\') += c;
        else if (static_cast<unsigned char>(c) < ' ')
            quoted += escape;
        else
            quoted += c;
    }
    return quoted + "\"";
}

struct Frame {
    const char* routine;
    const char* file;
    int line;
    std::size_t locals;  // of the routines outside of it
};

enum class Mode { Run, Into, Over, Out };

struct Debugger {
    int socket;
    std::string unread;
    std::vector<Frame> frames;  // outermost first
    std::vector<Value> locals;
    std::vector<Value> told;  // values that kv may ask about, by number, while the program stands

    std::map<std::string, std::set<int>> breaks;  // by file
    std::vector<bool> breakLines;                 // of any file
    std::vector<std::string> skipped;             // folders whose files no step leads into
    Mode mode;
    Frame from;         // where the step began
    std::size_t depth;  // and how deep

    volatile sig_atomic_t hasMail;
    bool pauses;
};
Debugger* debugger = nullptr;

// ---- Lines ----------------------------------------------------------------------------------------------------------

void Say(const std::string& line) {
    const std::string text = line + "\n";
    for (std::size_t at = 0; at < text.size();) {
        const ssize_t written = write(debugger->socket, text.data() + at, text.size() - at);
        if (written < 0 && errno != EINTR) return;
        if (written > 0) at += static_cast<std::size_t>(written);
    }
}

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

// Without kv the program goes no further.
void ReadMore() {
    char bytes[4096];
    const ssize_t count = read(debugger->socket, bytes, sizeof bytes);
    if (count > 0) debugger->unread.append(bytes, static_cast<std::size_t>(count));
    if (count == 0 || (count < 0 && errno != EINTR && errno != EAGAIN)) _exit(1);
}

bool HasMore() {
    char byte;
    return recv(debugger->socket, &byte, 1, MSG_PEEK | MSG_DONTWAIT) >= 0;
}

std::size_t NumberAt(const Words& words, std::size_t at) {
    return at < words.size() ? std::strtoul(words[at].c_str(), nullptr, 10) : 0;
}

// ---- Answers --------------------------------------------------------------------------------------------------------

class Told : public Items {
public:
    Told(std::size_t from, std::size_t atMost) : Items(from, atMost) {}

    void Take(const Value& value, std::size_t number) override {
        std::string text;
        const char kind = value.handler->show(value.at, text);
        Put(value.name, value.type, number, kind, text, std::to_string(debugger->told.size()));
        debugger->told.push_back(value);
    }
    void TakeText(std::size_t number, char kind, const std::string& text) override {
        Put(nullptr, nullptr, number, kind, text, "-1");
    }
    void Answer() const { Say("{\"items\":[" + json + "],\"total\":" + std::to_string(total) + "}"); }

private:
    std::string json;

    void Put(const char* name, const char* type, std::size_t number, char kind, const std::string& text,
             const std::string& ref) {
        json += std::string(json.empty() ? "" : ",") +
                "{\"name\":" + Quoted(name != nullptr ? name : "[" + std::to_string(number) + "]") +
                ",\"type\":" + Quoted(type != nullptr ? type : "") + ",\"kind\":\"" + kind +
                "\",\"value\":" + Quoted(text) + ",\"ref\":" + ref + "}";
    }
};

std::string Place(const Frame& frame) {
    return "\"routine\":" + Quoted(frame.routine) + ",\"file\":" + Quoted(frame.file) +
           ",\"line\":" + std::to_string(frame.line);
}

void TellStack(const Words& words) {
    const std::size_t total = debugger->frames.size();
    std::string json;
    for (std::size_t i = NumberAt(words, 1), n = 0; i < total && n < NumberAt(words, 2); ++i, ++n)
        json += (n == 0 ? "{" : ",{") + Place(debugger->frames[total - 1 - i]) + "}";
    Say("{\"frames\":[" + json + "],\"total\":" + std::to_string(total) + "}");
}

// Of the frame with this number, the innermost being 0.
void TellLocals(const Words& words) {
    Told told(0, ULONG_MAX);
    const std::size_t total = debugger->frames.size(), number = NumberAt(words, 1);
    if (number < total) {
        const std::size_t at = total - 1 - number;
        const std::size_t end = number == 0 ? debugger->locals.size() : debugger->frames[at + 1].locals;
        for (std::size_t i = debugger->frames[at].locals; i < end; ++i) told.Take(debugger->locals[i], i);
    }
    told.Answer();
}

void TellGlobals(const Words&) {
    Told told(0, ULONG_MAX);
    program.listGlobals(told);
    told.Answer();
}

void TellItems(const Words& words) {
    Told told(NumberAt(words, 2), NumberAt(words, 3));
    if (NumberAt(words, 1) < debugger->told.size()) {
        const Value value = debugger->told[NumberAt(words, 1)];  // told grows
        value.handler->list(value.at, told);
    }
    told.Answer();
}

void TellObjects(const Words& words) {
    Told told(NumberAt(words, 2), NumberAt(words, 3));
    for (const TypeRow* type = program.types; type->name != nullptr; ++type)
        if (words[1] == type->name) type->list(told);
    told.Answer();
}

void TellTypes(const Words&) {
    std::string json;
    for (const TypeRow* type = program.types; type->name != nullptr; ++type) {
        Told none(0, 0);
        type->list(none);
        json += std::string(json.empty() ? "" : ",") + "{\"name\":" + Quoted(type->name) +
                ",\"count\":" + std::to_string(none.total) + "}";
    }
    Say("{\"types\":[" + json + "]}");
}

void SetValueOf(const Words& words) {
    const std::size_t number = NumberAt(words, 1);
    bool done = false;
    if (number < debugger->told.size() && words.size() > 2) {
        const Value& value = debugger->told[number];
        done = value.handler->set(value.at, words[2].c_str());
    }
    Say(done ? "{\"done\":true}" : "{\"done\":false}");
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
    void (*answer)(const Words& words);
} questions[] = {
    {"stack", TellStack}, {"locals", TellLocals},   {"globals", TellGlobals}, {"items", TellItems},
    {"types", TellTypes}, {"objects", TellObjects}, {"set", SetValueOf},      {"breaks", TakeBreaks},
};

const struct {
    const char* word;
    Mode mode;
} leaving[] = {{"go", Mode::Run}, {"into", Mode::Into}, {"over", Mode::Over}, {"out", Mode::Out}};

// Whether the program goes on. "again" does what the command before has begun.
bool Obey(const Words& words) {
    for (const auto& row : questions)
        if (words[0] == row.word) row.answer(words);
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
}

// A step may end at a breakpoint that kv then takes no notice of.
void Stop(const char* reason, const char* text, bool stepped = false) {
    std::cout.flush();
    std::fflush(stdout);
    debugger->pauses = false;
    const Frame nowhere = {"", "", 0, 0};
    Say(std::string("{\"event\":\"stop\",\"reason\":\"") + reason + "\",\"text\":" + Quoted(text) + "," +
        Place(debugger->frames.empty() ? nowhere : debugger->frames.back()) +
        (stepped ? ",\"stepped\":true}" : ",\"stepped\":false}"));
    Stand();
}

// What has come while the program ran.
void ReadMail() {
    debugger->hasMail = 0;
    while (HasMore()) ReadMore();
    for (Words words; TakeLine(words);) Obey(words);
}

void NoteMail(int) { debugger->hasMail = 1; }

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

void Enter(const char* name) { debugger->frames.push_back({name, "", 0, debugger->locals.size()}); }

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
    if (debugger->pauses)
        Stop("pause", "");
    else if (IsBreak(file, line))
        Stop("breakpoint", "", steps);
    else if (steps)
        Stop("step", "");
}

void Variable(const char*, const char*, const char*, int) {}
void Pause() {}
void End() { debugger->frames.clear(); }

void AtFailure(const char* text) { Stop("failure", text); }

void TellTables() {
    std::string json;
    for (const Places* row = program.places; row->routine != nullptr; ++row)
        json += std::string(json.empty() ? "{" : ",{") + "\"routine\":" + Quoted(row->routine) +
                ",\"file\":" + Quoted(row->file) + ",\"lines\":\"" + row->lines + "\"}";
    Say("{\"event\":\"start\",\"places\":[" + json + "]}");
}

const Listener listener = {Enter, Leave, Statement, Variable, Pause, End};

// Before anything of the program runs, but behind what tells of failures.
__attribute__((constructor(102))) void Begin() {
    const char* number = std::getenv("KV_DEBUG_LISTENS");
    if (number == nullptr) return;
    debugger = new Debugger();
    debugger->socket = std::atoi(number);
    unsetenv("KV_DEBUG_LISTENS");
    struct sigaction noted;
    std::memset(&noted, 0, sizeof noted);
    noted.sa_handler = NoteMail;
    noted.sa_flags = SA_RESTART;
    sigaction(SIGIO, &noted, nullptr);
    signal(SIGINT, SIG_IGN);  // kv makes a pause of it
    fcntl(debugger->socket, F_SETFD, FD_CLOEXEC);
    fcntl(debugger->socket, F_SETOWN, getpid());
    fcntl(debugger->socket, F_SETFL, fcntl(debugger->socket, F_GETFL) | O_ASYNC);
    if (&__kvAtFailure != nullptr) __kvAtFailure = AtFailure;
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
