#include <algorithm>
#include <cstdlib>

#include "debug/adapter.h"

namespace debug {

Json Adapter::SetAll(const Json& wanted,
                     const std::function<void(const Json& one, Breakpoint& breakpoint)>& find) {
    Json said = Json::array();
    for (const Json& one : wanted) {
        Breakpoint breakpoint;
        breakpoint.condition = one.value("condition", "");
        breakpoint.wanted = std::atoi(one.value("hitCondition", "").c_str());
        breakpoint.log = one.value("logMessage", "");
        find(one, breakpoint);
        if (breakpoint.line == 0) {
            said.push_back({{"verified", false}, {"message", "the program cannot stop there"}});
            continue;
        }
        const int number = session->Add(breakpoint);
        said.push_back({{"id", number}, {"verified", true}, {"line", breakpoint.line}});
    }
    return {{"breakpoints", said}};
}

void Adapter::Forget(const std::function<bool(const Breakpoint&)>& is) {
    auto& all = session->breakpoints;
    all.erase(std::remove_if(all.begin(), all.end(), is), all.end());
    session->SendBreakpoints();
}

Json Adapter::SetBreakpoints(const Json& arguments) {
    NeedsSession();
    const std::string file = session->FindFile(arguments.at("source").at("path").get<std::string>());
    Forget([&](const Breakpoint& one) { return one.file == file && !one.ofRoutine; });
    return SetAll(arguments.value("breakpoints", Json::array()),
                  [&](const Json& one, Breakpoint& breakpoint) {
                      breakpoint.file = file;
                      breakpoint.line = session->FindLine(file, one.at("line").get<int>());
                  });
}

Json Adapter::SetFunctionBreakpoints(const Json& arguments) {
    NeedsSession();
    Forget([](const Breakpoint& one) { return one.ofRoutine; });
    return SetAll(arguments.at("breakpoints"), [&](const Json& one, Breakpoint& breakpoint) {
        breakpoint.ofRoutine = true;
        session->FindRoutine(one.at("name").get<std::string>(), breakpoint.file, breakpoint.line);
    });
}

Json Adapter::SetExceptionBreakpoints(const Json& arguments) {
    stopsAtFailures = !arguments.at("filters").empty();
    return nullptr;
}

}  // namespace debug
