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

// Written by the statements, by NoteInlineCpp, and reset with the tables.
extern ProgramUses programUses;

// Takes a line of inline C++ into account.
void NoteInlineCpp(const std::string& line);
