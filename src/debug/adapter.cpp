#include "debug/adapter.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include "debug/streams.h"
#include "lsp/framing.h"

namespace debug {

namespace {
constexpr int thread = 1;                 // programs have one
constexpr std::size_t errorsKept = 4096;  // bytes

Json ArgumentsOf(const Json& request) {
    const auto found = request.find("arguments");
    return found != request.end() && found->is_object() ? *found : Json::object();
}

// At the end: those of a letter whose other bytes are missing.
std::size_t UnfinishedBytes(const std::string& text) {
    for (std::size_t back = 1; back <= std::min<std::size_t>(3, text.size()); ++back) {
        const auto byte = static_cast<unsigned char>(text[text.size() - back]);
        if ((byte & 0xC0) == 0x80) continue;
        const std::size_t wanted = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
        return wanted > back ? back : 0;
    }
    return 0;
}
// What the program has said of it itself, before the lines "  at ..."; where that is in a terminal nobody knows.
std::string TextOfFailure(const std::string& errors) {
    std::istringstream lines(errors);
    std::string text = "run-time error";
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty() && line[0] != ' ') text = line;
    }
    return text;
}

}  // namespace

std::string TextAt(const Json& message, const char* name) {
    const bool has = message.is_object() && message.contains(name) && message[name].is_string();
    return has ? message[name].get<std::string>() : std::string();
}

int Adapter::Run() {
    PrepareInput();
    std::string text;
    while (!leaves) {
        if (!waiting.empty()) {
            const Json request = waiting.front();
            waiting.pop_front();
            Serve(request);
            continue;
        }
        const bool runs = session != nullptr && session->target.IsRunning();
        const Target::Event event = runs ? session->target.Wait(0, text) : Target::Event::Client;
        try {
            Take(event, text);
        } catch (const Gone&) {
            TellEnd();
        }
    }
    return 0;
}

// ---- Messages -------------------------------------------------------------------------------------------------------

void Adapter::Send(Json message) {
    message["seq"] = ++sequence;
    WriteMessage(stdout, message.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void Adapter::SendEvent(const char* event, const Json& body) {
    Send({{"type", "event"}, {"event", event}, {"body", body}});
}

// A piece of what the program writes may end within a letter.
void Adapter::SendOutput(const char* category, const std::string& text) {
    std::string& begun = cut[category];
    const std::string whole = begun + text;
    const std::size_t size = whole.size() - UnfinishedBytes(whole);
    begun = whole.substr(size);
    if (size > 0) SendEvent("output", {{"category", category}, {"output", whole.substr(0, size)}});
}

void Adapter::Take(Target::Event event, const std::string& text) {
    switch (event) {
        case Target::Event::Output:
            return SendOutput("stdout", text);
        case Target::Event::Errors:
            errors += text;
            errors.erase(0, errors.size() - std::min(errors.size(), errorsKept));
            return SendOutput("stderr", text);
        case Target::Event::Line:
            return TakeStop(text);
        case Target::Event::Ended:
            return TellEnd();
        case Target::Event::Interrupted:  // Ctrl-C in the program's terminal
            if (!stands) session->target.Pause();
            return;
        case Target::Event::Late:
            return SendOutput("console", std::string(waitsText) + "\n");
        case Target::Event::Client:
            return TakeRequest();
    }
}

// False when it was no request; at the end of all it leaves.
bool Adapter::ReadRequest(Json& request) {
    std::string text;
    leaves = leaves || !ReadMessage(stdin, text);
    request = Json::parse(text, nullptr, false);
    return !leaves && TextAt(request, "type") == "request";
}

void Adapter::TakeRequest() {
    Json request;
    if (ReadRequest(request)) Serve(request);
}

void Adapter::Serve(const Json& request) {
    const std::string command = TextAt(request, "command");
    const auto number = request.find("seq");
    const bool isNumbered = number != request.end() && number->is_number_integer();
    Json answer = {
        {"type", "response"}, {"request_seq", isNumbered ? *number : Json(0)}, {"command", command}};
    std::string problem;
    bool isGone = false;
    try {
        answer["body"] = Answer(command, ArgumentsOf(request));
    } catch (const Refusal& refusal) {
        problem = refusal.text;
    } catch (const Json::exception& wrong) {
        problem = std::string("kv dap does not understand ") + command + ": " + wrong.what();
    } catch (const Gone&) {
        problem = "the program has ended";
        isGone = true;
    }
    answer["success"] = problem.empty();
    if (!problem.empty()) answer["message"] = problem;
    Send(answer);
    if (isGone) TellEnd();
    for (const std::string& event : after) SendEvent(event.c_str());
    after.clear();
    if (!goesOn.empty()) Go();
}

Json Adapter::Answer(const std::string& command, const Json& arguments) {
    for (const Row& row : Rows())
        if (command == row.command) return (this->*row.answer)(arguments);
    throw Refusal{"kv dap does not know " + command};
}

void Adapter::Go() {
    const std::string how = goesOn;
    goesOn.clear();
    holders.clear();
    stands = false;
    session->Go(how);
}

void Adapter::TakeStop(const std::string& line) {
    Stop stop;
    std::string logged;
    const std::map<int, Json> before = AllTold();
    stands = session->TakesStop(line, stop, logged);
    TellChanged(before);
    SendOutput("console", logged);
    if (!stands) return session->Go("again");
    const bool failed = stop.reason == "failure";
    if (failed && !stopsAtFailures) {
        goesOn = "go";
        return Go();
    }
    if (stopsAtEntry && stop.reason == "step") stop.reason = "entry";
    stopsAtEntry = false;
    Json body = {
        {"reason", failed ? "exception" : stop.reason}, {"threadId", thread}, {"allThreadsStopped", true}};
    if (failed) body["text"] = stop.text.empty() ? TextOfFailure(errors) : stop.text;
    errors.clear();
    if (stop.breakpoint != 0) body["hitBreakpointIds"] = {stop.breakpoint};
    SendEvent("stopped", body);
}

void Adapter::TellEnd() {
    stands = false;
    holders.clear();
    for (const auto& [category, bytes] : cut)
        if (!bytes.empty()) SendEvent("output", {{"category", category}, {"output", bytes}});
    cut.clear();
    SendEvent("exited", {{"exitCode", session->target.End(false)}});
    SendEvent("terminated");
}

void Adapter::NeedsSession() const {
    if (session == nullptr) throw Refusal{"launch comes first"};
}

void Adapter::NeedsStop() const {
    NeedsSession();
    if (!session->target.IsRunning()) throw Refusal{"the program has ended"};
    if (!stands) throw Refusal{"the program runs"};
}

// ---- Going on -------------------------------------------------------------------------------------------------------

Json Adapter::Continue(const Json&) {
    NeedsStop();
    goesOn = "go";
    return {{"allThreadsContinued", true}};
}

Json Adapter::StepBy(const char* how) {
    NeedsStop();
    goesOn = how;
    return nullptr;
}

Json Adapter::Next(const Json&) { return StepBy("over"); }

Json Adapter::StepIn(const Json&) { return StepBy("into"); }

Json Adapter::StepOut(const Json&) { return StepBy("out"); }

Json Adapter::Pause(const Json&) {
    NeedsSession();
    if (session->target.IsRunning() && !stands) session->target.Pause();
    return nullptr;
}

Json Adapter::Threads(const Json&) { return {{"threads", {{{"id", thread}, {"name", "Main"}}}}}; }

const std::vector<Adapter::Row>& Adapter::Rows() {
    static const std::vector<Row> rows = {
        {"initialize", &Adapter::Initialize},
        {"launch", &Adapter::LaunchIt},
        {"configurationDone", &Adapter::Configured},
        {"restart", &Adapter::Restart},
        {"terminate", &Adapter::Terminate},
        {"disconnect", &Adapter::Disconnect},
        {"setBreakpoints", &Adapter::SetBreakpoints},
        {"setFunctionBreakpoints", &Adapter::SetFunctionBreakpoints},
        {"setExceptionBreakpoints", &Adapter::SetExceptionBreakpoints},
        {"continue", &Adapter::Continue},
        {"next", &Adapter::Next},
        {"stepIn", &Adapter::StepIn},
        {"stepOut", &Adapter::StepOut},
        {"pause", &Adapter::Pause},
        {"threads", &Adapter::Threads},
        {"stackTrace", &Adapter::StackTrace},
        {"scopes", &Adapter::Scopes},
        {"variables", &Adapter::Variables},
        {"evaluate", &Adapter::EvaluateIt},
        {"setVariable", &Adapter::SetVariable},
        {"setExpression", &Adapter::SetExpression},
    };
    return rows;
}

int ServeEditor(const Maker& make) { return Adapter(make).Run(); }

}  // namespace debug
