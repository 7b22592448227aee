#include "debug/launch.h"
#include "debug/target.h"

namespace debug {

const char* const noDebugger = "programs cannot be debugged on Windows yet; KVDEBUG=trace shows their steps";

Target::~Target() = default;
bool Target::Start(const std::vector<std::string>&, bool, std::string& problem) {
    problem = noDebugger;
    return false;
}
void Target::Send(const std::string&) const {}
Target::Event Target::Wait(int, std::string&) { return Event::Ended; }
int Target::End(bool) { return 1; }

std::string ErrorsOf(const std::function<void()>& work) {
    work();
    return "";
}

TerminalTurns::TerminalTurns() = default;
TerminalTurns::~TerminalTurns() = default;
void TerminalTurns::ToUser() {}
void TerminalTurns::ToProgram() {}

}  // namespace debug
