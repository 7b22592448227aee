// Programs run in no terminal of the editor's there.
#include "debug/launch.h"
#include "debug/target.h"

namespace debug {

const bool Offer::isPossible = false;

Offer::~Offer() = default;
bool Offer::Make(std::string&) { return false; }
std::vector<std::string> Offer::Command(const std::string&, const std::vector<std::string>& program) const {
    return program;
}
Offer::Event Offer::Wait(int, Target&) { return Event::TooLate; }
int Target::EndElsewhere(bool kills) { return EndHere(kills); }

bool IsDebuggeeCommand(const std::vector<std::string>&) { return false; }
int RunDebuggee(const std::vector<std::string>&) { return 1; }

}  // namespace debug
