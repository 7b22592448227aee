// One task given to kv, with everything it needs to know: the settings of a run.
#pragma once

#include <string>
#include <vector>

#include "kv/build_folder.h"
#include "kv/command_line.h"

struct Job {
    Options options;
    std::string typedFolder;  // where kv was called
    std::string source;       // full path of the main source
    std::string sourceFolder;
    std::string installation;  // the folder that holds bin/, config/, userlibs/ and include/
    std::string kv;            // full paths of the two commands
    std::string kvt;
    std::vector<std::string> compiler;  // first words of its command; empty for kv check
    BuildFolder build;
    std::string mainCpp;  // the generated main file
    std::string prelude;  // the precompiled header of quick compilations; empty: none

    // Set by the translation:
    std::vector<std::string> linkerFlags;
    bool hadWarnings = false;
};

// Finds everything that the options name. Returns false after telling the user what is wrong.
bool PrepareJob(const Options& options, Job& job);
