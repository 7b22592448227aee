#include <algorithm>

#include "base/utf8.h"
#include "debug/adapter.h"

namespace debug {

Json Adapter::Told(const Breakpoint& breakpoint) {
    Json told = {{"id", breakpoint.number}, {"verified", breakpoint.isRight}};
    if (breakpoint.line != 0) told["line"] = breakpoint.line;
    if (!breakpoint.problem.empty()) told["message"] = breakpoint.problem;
    return told;
}

// In place of those that are meant. Those that the program has no place for may have one when it is made anew.
Json Adapter::SetAll(const Json& wanted, const std::function<bool(const Breakpoint&)>& are,
                     const std::function<void(const Json& one, Breakpoint& breakpoint)>& ask) {
    auto& all = session->breakpoints;
    std::vector<Breakpoint> added;
    Json said = Json::array();
    for (const Json& one : wanted) {
        Breakpoint breakpoint;
        breakpoint.condition = one.value("condition", "");
        breakpoint.wanted = CountIn(one.value("hitCondition", ""));
        breakpoint.log = one.value("logMessage", "");
        ask(one, breakpoint);
        breakpoint.number = session->NewNumber();
        session->Settle(breakpoint);
        said.push_back(Told(breakpoint));
        added.push_back(std::move(breakpoint));
    }
    all.erase(std::remove_if(all.begin(), all.end(), are), all.end());
    all.insert(all.end(), added.begin(), added.end());
    session->SendBreakpoints();
    return {{"breakpoints", said}};
}

Json Adapter::SetBreakpoints(const Json& arguments) {
    NeedsSession();
    const std::string path = arguments.at("source").at("path").get<std::string>();
    const std::string file = session->FindFile(path);
    if (!file.empty() && PathOf(path).is_absolute()) spelled[file] = path;
    return SetAll(
        arguments.value("breakpoints", Json::array()),
        [&](const Breakpoint& one) {
            const bool isThere = !file.empty() && one.file == file;
            return one.routine.empty() && (isThere || one.askedFile == path);
        },
        [&](const Json& one, Breakpoint& breakpoint) {
            breakpoint.askedFile = path;
            breakpoint.askedLine = one.at("line").get<int>();
        });
}

Json Adapter::SetFunctionBreakpoints(const Json& arguments) {
    NeedsSession();
    return SetAll(
        arguments.at("breakpoints"), [](const Breakpoint& one) { return !one.routine.empty(); },
        [&](const Json& one, Breakpoint& breakpoint) {
            breakpoint.routine = one.at("name").get<std::string>();
        });
}

std::map<int, Json> Adapter::AllTold() const {
    std::map<int, Json> all;
    if (session == nullptr) return all;
    for (const Breakpoint& one : session->breakpoints) all[one.number] = Told(one);
    return all;
}

// What the editor has been told of them before may no longer hold.
void Adapter::TellChanged(const std::map<int, Json>& before) {
    for (const auto& [number, told] : AllTold()) {
        const auto known = before.find(number);
        if (known != before.end() && known->second != told)
            SendEvent("breakpoint", {{"reason", "changed"}, {"breakpoint", told}});
    }
}

Json Adapter::SetExceptionBreakpoints(const Json& arguments) {
    stopsAtFailures = !arguments.at("filters").empty();
    return nullptr;
}

}  // namespace debug
