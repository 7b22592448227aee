// What a program does that its support code can be spared for when it does not. Only -fast looks at it.
#pragma once

#include <string>

struct ProgramUses {
    bool inlineCpp = false;       // any at all
    bool timers = false;          // AutoCall
    bool inserts = false;         // Insert: places in the list of a Type count, removed objects included
    bool foreignOutput = false;   // code that may write past the C++ streams, or start programs
    bool unsyncedOutput = false;  // code that parts the C++ streams from those of C
};

constexpr bool ProgramUses::*allProgramUses[] = {&ProgramUses::inlineCpp, &ProgramUses::timers,
                                                 &ProgramUses::inserts, &ProgramUses::foreignOutput,
                                                 &ProgramUses::unsyncedOutput};

// Written by NoteUse and NoteInlineCpp, and reset with the tables.
extern ProgramUses programUses;

// Notes it for the program and for the file whose outputs are under way.
void NoteUse(bool ProgramUses::*use);

// Takes a line of inline C++ into account.
void NoteInlineCpp(const std::string& line);
