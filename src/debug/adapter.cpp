#include "debug/adapter.h"

#include <cstdio>

#include "lsp/framing.h"

namespace debug {

namespace {
constexpr int thread = 1;  // programs have one

// Messages may be anything.
std::string TextAt(const Json& message, const char* name) {
    const bool has = message.is_object() && message.contains(name) && message[name].is_string();
    return has ? message[name].get<std::string>() : std::string();
}
Json ArgumentsOf(const Json& request) {
    const auto found = request.find("arguments");
    return found != request.end() && found->is_object() ? *found : Json::object();
}
}  // namespace

int Adapter::Run() {
    std::setvbuf(stdin, nullptr, _IONBF, 0);  // what is there is seen by whoever waits
    std::string text;
    while (!leaves) {
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

void Adapter::SendOutput(const char* category, const std::string& text) {
    if (!text.empty()) SendEvent("output", {{"category", category}, {"output", text}});
}

void Adapter::Take(Target::Event event, const std::string& text) {
    switch (event) {
        case Target::Event::Output:
            return SendOutput("stdout", text);
        case Target::Event::Errors:
            return SendOutput("stderr", text);
        case Target::Event::Line:
            return TakeStop(text);
        case Target::Event::Ended:
            return TellEnd();
        case Target::Event::Interrupted:
            return;
        case Target::Event::Client:
            return TakeRequest();
    }
}

void Adapter::TakeRequest() {
    std::string text;
    if (!ReadMessage(stdin, text)) {
        leaves = true;
        return;
    }
    const Json request = Json::parse(text, nullptr, false);
    if (TextAt(request, "type") != "request") return;
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
        problem = wrong.what();
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
    stands = session->TakesStop(line, stop, logged);
    SendOutput("console", logged);
    if (!stands) return;
    const bool failed = stop.reason == "failure";
    if (failed && !stopsAtFailures) {
        goesOn = "go";
        return Go();
    }
    if (stopsAtEntry && stop.reason == "step") stop.reason = "entry";
    stopsAtEntry = false;
    Json body = {
        {"reason", failed ? "exception" : stop.reason}, {"threadId", thread}, {"allThreadsStopped", true}};
    if (failed) body["text"] = stop.text.empty() ? "run-time error" : stop.text;
    if (stop.breakpoint != 0) body["hitBreakpointIds"] = {stop.breakpoint};
    SendEvent("stopped", body);
}

void Adapter::TellEnd() {
    stands = false;
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

// ---- The life of a program ------------------------------------------------------------------------------------------

Json Adapter::Initialize(const Json&) {
    return {{"supportsConfigurationDoneRequest", true},
            {"supportsFunctionBreakpoints", true},
            {"supportsConditionalBreakpoints", true},
            {"supportsHitConditionalBreakpoints", true},
            {"supportsLogPoints", true},
            {"supportsSetVariable", true},
            {"supportsEvaluateForHovers", true},
            {"supportsTerminateRequest", true},
            {"supportsRestartRequest", true},
            {"exceptionBreakpointFilters",
             {{{"filter", "failures"}, {"label", "Run-time errors"}, {"default", true}}}}};
}

void Adapter::Start() {
    Launch launch;
    bool made = false;
    const std::string said = ErrorsOf([&] {
        made = make(launched.at("program").get<std::string>(),
                    launched.value("args", std::vector<std::string>()), launch);
    });
    SendOutput("stderr", said);
    if (!made) throw Refusal{"the program cannot be made: " + said};
    std::unique_ptr<Session> next = std::make_unique<Session>(launch);
    if (session != nullptr) next->breakpoints = session->breakpoints;
    std::string problem;
    if (!next->Start(true, problem)) throw Refusal{"the program cannot be run: " + problem};
    session = std::move(next);
}

Json Adapter::LaunchIt(const Json& arguments) {
    Kill();
    launched = arguments;
    Start();
    after = {"initialized"};
    return nullptr;
}

Json Adapter::Configured(const Json&) {
    NeedsSession();
    stopsAtEntry = launched.value("stopOnEntry", false);
    goesOn = stopsAtEntry ? "into" : "go";
    return nullptr;
}

void Adapter::Kill() {
    if (session != nullptr) session->target.End(true);
    stands = false;
}

Json Adapter::Restart(const Json&) {
    NeedsSession();
    Kill();
    Start();
    return Configured({});
}

Json Adapter::Terminate(const Json&) {
    Kill();
    after = {"terminated"};
    return nullptr;
}

Json Adapter::Disconnect(const Json&) {
    leaves = true;
    return nullptr;
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
    if (session != nullptr && !stands) session->target.Send("pause");
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
    };
    return rows;
}

int ServeEditor(const Maker& make) { return Adapter(make).Run(); }

}  // namespace debug
