#include <algorithm>
#include <cstdlib>

#include "debug/adapter.h"

namespace debug {

// In place of those that are meant.
Json Adapter::SetAll(const Json& wanted, const std::function<bool(const Breakpoint&)>& are,
                     const std::function<void(const Json& one, Breakpoint& breakpoint)>& find) {
    auto& all = session->breakpoints;
    std::vector<Breakpoint> added;
    Json said = Json::array();
    for (const Json& one : wanted) {
        Breakpoint breakpoint;
        const std::string hits = one.value("hitCondition", "");
        breakpoint.condition = one.value("condition", "");
        breakpoint.wanted = std::atoi(hits.c_str());
        breakpoint.log = one.value("logMessage", "");
        find(one, breakpoint);
        if (breakpoint.line == 0 || (!hits.empty() && breakpoint.wanted <= 0)) {
            const char* const why = breakpoint.line == 0
                                        ? "the program cannot stop there"
                                        : "a hit count is a number: 3 stops from the third time on";
            said.push_back({{"verified", false}, {"message", why}});
            continue;
        }
        breakpoint.number = session->NewNumber();
        added.push_back(breakpoint);
        said.push_back({{"id", breakpoint.number}, {"verified", true}, {"line", breakpoint.line}});
    }
    all.erase(std::remove_if(all.begin(), all.end(), are), all.end());
    all.insert(all.end(), added.begin(), added.end());
    session->SendBreakpoints();
    return {{"breakpoints", said}};
}

Json Adapter::SetBreakpoints(const Json& arguments) {
    NeedsSession();
    const std::string file = session->FindFile(arguments.at("source").at("path").get<std::string>());
    return SetAll(
        arguments.value("breakpoints", Json::array()),
        [&](const Breakpoint& one) { return one.file == file && !one.ofRoutine; },
        [&](const Json& one, Breakpoint& breakpoint) {
            breakpoint.file = file;
            breakpoint.line = session->FindLine(file, one.at("line").get<int>());
        });
}

Json Adapter::SetFunctionBreakpoints(const Json& arguments) {
    NeedsSession();
    return SetAll(
        arguments.at("breakpoints"), [](const Breakpoint& one) { return one.ofRoutine; },
        [&](const Json& one, Breakpoint& breakpoint) {
            breakpoint.ofRoutine = true;
            session->FindRoutine(one.at("name").get<std::string>(), breakpoint.file, breakpoint.line);
        });
}

Json Adapter::SetExceptionBreakpoints(const Json& arguments) {
    stopsAtFailures = !arguments.at("filters").empty();
    return nullptr;
}

}  // namespace debug
