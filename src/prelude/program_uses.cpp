#include "prelude/program_uses.h"

#include "base/run.h"
#include "prelude/output.h"

#include <string_view>

ProgramUses programUses;
static const PartOfRun partOfRun(programUses);

namespace {

struct Mark {
    std::string_view text;
    bool ProgramUses::*use;
    std::string_view notBehind = {};  // characters in front of the text that make it another word
};

// Parts of words are enough: a mark too many costs some speed, one too few costs the order of the output.
constexpr Mark marks[] = {
    {"Insert", &ProgramUses::inserts},
    // the C++ streams with buffers of their own
    {"sync_with_stdio", &ProgramUses::unsyncedOutput},
    {"rdbuf", &ProgramUses::unsyncedOutput},
    // the streams of C, whose input shows what was written before
    {"printf", &ProgramUses::foreignOutput, "sn"},
    {"puts", &ProgramUses::foreignOutput},
    {"putc", &ProgramUses::foreignOutput},
    {"getc", &ProgramUses::foreignOutput},
    {"gets", &ProgramUses::foreignOutput},
    {"scanf", &ProgramUses::foreignOutput, "s"},
    {"stdout", &ProgramUses::foreignOutput},
    {"stdin", &ProgramUses::foreignOutput},
    {"stderr", &ProgramUses::foreignOutput},
    {"perror", &ProgramUses::foreignOutput},
    {"wcout", &ProgramUses::foreignOutput},
    {"clog", &ProgramUses::foreignOutput},
    // the system's files, and other programs
    {"write", &ProgramUses::foreignOutput, "."},
    {"dup", &ProgramUses::foreignOutput},
    {"system", &ProgramUses::foreignOutput},
    {"popen", &ProgramUses::foreignOutput},
    {"fork", &ProgramUses::foreignOutput},
    {"exec", &ProgramUses::foreignOutput},
    {"spawn", &ProgramUses::foreignOutput},
    {"thread", &ProgramUses::foreignOutput},
    {"async", &ProgramUses::foreignOutput},
    {"sleep", &ProgramUses::foreignOutput},
    // ends that nobody hears of
    {"kill", &ProgramUses::foreignOutput},
    {"_exit", &ProgramUses::foreignOutput},
    {"_Exit", &ProgramUses::foreignOutput},
    {"quick_exit", &ProgramUses::foreignOutput},
    {"signal", &ProgramUses::foreignOutput},
    {"sigaction", &ProgramUses::foreignOutput},
    {"extern", &ProgramUses::foreignOutput},
};

bool Bears(std::string_view line, const Mark& mark) {
    for (std::size_t at = line.find(mark.text); at != std::string_view::npos;
         at = line.find(mark.text, at + 1))
        if (at == 0 || mark.notBehind.find(line[at - 1]) == std::string_view::npos) return true;
    return false;
}

// Files of the user's own may do anything; those of the C++ library have no ".h" in their names.
void NoteInclude(const std::string& line) {
    const std::size_t at = line.find("include");
    if (at == std::string::npos) return;
    const bool own = line.find('"', at) != std::string::npos;
    if (own) programUses.unsyncedOutput = true;
    if (own || line.find(".h", at) != std::string::npos) programUses.foreignOutput = true;
}

}  // namespace

void NoteUse(bool ProgramUses::*use) {
    programUses.*use = true;
    if (FileOutput* out = OpenOutput()) out->uses.*use = true;
}

void NoteInlineCpp(const std::string& line) {
    programUses.inlineCpp = true;
    programUses.timers = true;  // inline C++ may arm timers itself
    for (const Mark& mark : marks)
        if (Bears(line, mark)) programUses.*mark.use = true;
    NoteInclude(line);
}
