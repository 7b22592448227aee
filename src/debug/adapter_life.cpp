// A program that an editor debugs: how it begins and ends.
#include "base/utf8.h"
#include "debug/adapter.h"

namespace debug {

namespace {
constexpr int client = 0;  // its descriptor
}  // namespace

Json Adapter::Initialize(const Json& arguments) {
    clientHasTerminals = arguments.value("supportsRunInTerminalRequest", false);
    return {{"supportsConfigurationDoneRequest", true},
            {"supportsFunctionBreakpoints", true},
            {"supportsConditionalBreakpoints", true},
            {"supportsHitConditionalBreakpoints", true},
            {"supportsLogPoints", true},
            {"supportsSetVariable", true},
            {"supportsSetExpression", true},
            {"supportsEvaluateForHovers", true},
            {"supportsTerminateRequest", true},
            {"supportsRestartRequest", true},
            {"exceptionBreakpointFilters",
             {{{"filter", "failures"}, {"label", "Run-time errors"}, {"default", true}}}}};
}

Launch Adapter::MakeIt() {
    Launch launch;
    bool made = false;
    const std::string said = ErrorsOf([&] {
        made = make(launched.at("program").get<std::string>(),
                    launched.value("args", std::vector<std::string>()), launch);
    });
    SendOutput("stderr", said);
    if (!made) throw Refusal{"the program cannot be made: " + said};
    return launch;
}

// Where the program runs.
std::string Adapter::FolderOf(const Launch& launch) const {
    const std::string folder = launched.value("cwd", "");
    return folder.empty() ? TextOf(PathOf(launch.source).parent_path()) : folder;
}

// What runs stays where it is when no other program can be made.
void Adapter::Start() {
    std::unique_ptr<Session> next = std::make_unique<Session>(MakeIt());
    Kill();
    if (session != nullptr) next->TakeBreakpoints(*session);
    const std::string console = launched.value("console", "internalConsole");
    std::string problem;
    const bool inTerminal = console != "internalConsole";
    if (inTerminal && !Offer::isPossible)
        SendOutput("console", "programs run in the debug console on this system\n");
    if (inTerminal && clientHasTerminals && Offer::isPossible)
        StartInTerminal(*next);
    else if (!next->target.Start(next->launch.command, FolderOf(next->launch), true, problem))
        throw Refusal{"the program cannot be run: " + problem};
    if (!next->Begin(problem)) throw Refusal{"the program cannot be run: " + problem};
    const std::map<int, Json> before = AllTold();
    session = std::move(next);
    TellChanged(before);
    begins = true;
}

// The editor may have more to say before it has opened the terminal.
void Adapter::StartInTerminal(Session& next) {
    Offer offer;
    std::string problem;
    if (!offer.Make(problem)) throw Refusal{problem};
    const bool isExternal = launched.value("console", "") == "externalTerminal";
    Send({{"type", "request"},
          {"command", "runInTerminal"},
          {"arguments",
           {{"kind", isExternal ? "external" : "integrated"},
            {"title", TextOf(PathOf(next.launch.source).filename())},
            {"cwd", FolderOf(next.launch)},
            {"args", offer.Command(next.launch.kv, next.launch.command)}}}});
    for (;;) {
        const Offer::Event event = offer.Wait(client, next.target);
        if (event == Offer::Event::Came) return;
        if (event == Offer::Event::TooLate) throw Refusal{"the editor has opened no terminal"};
        Json message;
        if (ReadRequest(message)) waiting.push_back(message);
        const bool isAnswer = TextAt(message, "command") == "runInTerminal";
        const bool isRefused = isAnswer && !message.value("success", true);
        if (leaves || isRefused) throw Refusal{"the editor opens no terminal: " + TextAt(message, "message")};
    }
}

Json Adapter::LaunchIt(const Json& arguments) {
    launched = arguments;
    Start();
    after = {"initialized"};
    return nullptr;
}

Json Adapter::Configured(const Json&) {
    NeedsSession();
    if (!begins) throw Refusal{"the program has begun already"};
    begins = false;
    stopsAtEntry = launched.value("stopOnEntry", false);
    goesOn = stopsAtEntry ? "into" : "go";
    return nullptr;
}

void Adapter::Kill() {
    if (session != nullptr) session->target.End(true);
    stands = begins = false;
    holders.clear();
}

Json Adapter::Restart(const Json& arguments) {
    NeedsSession();
    if (arguments.contains("arguments") && arguments["arguments"].contains("program"))
        launched = arguments["arguments"];
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

}  // namespace debug
