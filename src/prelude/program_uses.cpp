#include "prelude/program_uses.h"

#include <string_view>

ProgramUses programUses;

namespace {

struct Mark {
    std::string_view text;
    bool ProgramUses::*use;
};

// Parts of words are enough: a mark too many costs some speed, one too few costs the order of the output.
constexpr Mark marks[] = {
    {"Insert", &ProgramUses::inserts},       {"sync_with_stdio", &ProgramUses::unsyncedOutput},
    {"rdbuf", &ProgramUses::unsyncedOutput}, {"stderr", &ProgramUses::foreignOutput},
    {"perror", &ProgramUses::foreignOutput}, {"clog", &ProgramUses::foreignOutput},
    {"write", &ProgramUses::foreignOutput},  {"dup", &ProgramUses::foreignOutput},
    {"system", &ProgramUses::foreignOutput}, {"popen", &ProgramUses::foreignOutput},
    {"fork", &ProgramUses::foreignOutput},   {"exec", &ProgramUses::foreignOutput},
    {"spawn", &ProgramUses::foreignOutput},  {"thread", &ProgramUses::foreignOutput},
    {"async", &ProgramUses::foreignOutput},  {"sleep", &ProgramUses::foreignOutput},
    {"kill", &ProgramUses::foreignOutput},   {"_exit", &ProgramUses::foreignOutput},
    {"_Exit", &ProgramUses::foreignOutput},  {"quick_exit", &ProgramUses::foreignOutput},
    {"signal", &ProgramUses::foreignOutput}, {"sigaction", &ProgramUses::foreignOutput},
    {"extern", &ProgramUses::foreignOutput},
};

// Files of the user's own, which may do anything.
bool IncludesOwnFile(const std::string& line) {
    const std::size_t at = line.find("include");
    return at != std::string::npos && line.find('"', at) != std::string::npos;
}

}  // namespace

void NoteInlineCpp(const std::string& line) {
    programUses.inlineCpp = true;
    programUses.timers = true;  // inline C++ may arm timers itself
    for (const Mark& mark : marks)
        if (line.find(mark.text) != std::string::npos) programUses.*mark.use = true;
    if (IncludesOwnFile(line)) programUses.foreignOutput = programUses.unsyncedOutput = true;
}
