// One task given to kv, with everything it needs to know: the settings of a run.
#pragma once

#include <string>
#include <vector>

#include "kv/build_folder.h"
#include "kv/command_line.h"
#include "library/korvel.h"

// One call of the compiler that made an object.
struct Compilation {
    std::string main;          // the file that was compiled; empty: it is not known any more
    std::string dependencies;  // the record of what was read
};

struct Job {
    Options options;
    std::string typedFolder;  // where kv was called
    std::string source;       // full path of the main source
    std::string sourceFolder;
    std::string installation;           // the folder that holds bin/, config/, userlibs/ and include/
    std::string kv;                     // full path of the command itself
    std::vector<std::string> compiler;  // first words of its command; empty when there is no work for it
    BuildFolder build;
    std::string mainCpp;                    // the generated main file
    std::vector<Compilation> compilations;  // that made the objects; none: the usual one of the main file
    std::vector<std::string> objects;       // that were linked; none: the usual one
    std::string prelude;                    // the precompiled header that served the compilation; empty: none

    std::string failureCode;   // what tells of the program's failures, to be linked; empty: none
    std::string debuggerCode;  // the debugger's side in the program, the same way

    // Set by the translation, or by the last one when nothing has changed since:
    korvel::Result translation;
    std::vector<std::string> linkerFlags;
    bool hadWarnings = false;
};

// Finds everything that the options name. Returns false after telling the user what is wrong.
bool PrepareJob(const Options& options, Job& job);

// What runs the job's program: its path and the arguments that it was given.
std::vector<std::string> ProgramCommand(const Job& job);

// What the name of the job's program ends in.
std::string ProgramSuffix(const Job& job);

// Tells the job's program, which is about to be run, the way from where kv was called to its sources: so it names them
// when it fails (include/kvfailure.cpp, lib/std/test.kvl).
void TellFolder(const Job& job);

// Gives the job its build folder, in the first possible place from job.build.place on. Returns false after telling the
// user that there is none.
bool PrepareFolder(Job& job);

// Whether the name of a program leads to its main file, which becomes `found`. Tells the user when it does not.
bool FindSource(const std::string& name, const std::string& typedFolder, std::string& found);

// Does the work of a build in the job's folder, alone there: elsewhere when there is no room, and once more when
// somebody has removed the folder meanwhile. Returns what `work` returns. When that is false, it has told the user what
// went wrong, unless the build was disturbed.
bool WorkInFolder(Job& job, bool (*work)(Job&));
