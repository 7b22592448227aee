// Translates, compiles and runs Korvel programs the way a user does.
#pragma once

#include <string>
#include <vector>

#include "process.h"

// Paths of the run. Environment variables override what the build configured: KORVEL_STAGE, KORVEL_WORK.
// With KORVEL_TRANSLATE_ONLY set nothing is compiled; used with a sanitized kvt.
struct Places {
    std::string stage;   // installation root with bin/kvt
    std::string source;  // root of the repository
    std::string work;    // scratch folder
    bool translateOnly = false;
};
const Places& GetPlaces();

// Makes an empty scratch folder and returns its path.
std::string FreshFolder(const std::string& name);

// Adds what a program said to the log of messages that tests have provoked.
void LogMessages(const ProcessResult& result);

// Runs kvt in `folder` and logs what it says.
ProcessResult RunKvt(const std::vector<std::string>& arguments, const std::string& folder);

// Empty, or what is wrong with the .cpp and .h files below outputFolder.
std::string CheckGenerated(const std::string& outputFolder);

struct CompileOptions {
    bool precompiled = true;  // the standard includes come from a precompiled header
    bool sanitize = false;
    std::string linkerFlags;
    std::string includeFolder = GetPlaces().stage + "/include";
};
// Compiles to `folder`/program.
ProcessResult CompileProgram(const std::string& cppFile, const std::string& folder,
                             const CompileOptions& options);

// The concatenated files below a folder that end in `extension`.
std::string ReadAll(const std::string& folder, const std::string& extension);

// Where two texts part, as a short message for a failed comparison.
std::string FirstDifference(const std::string& wanted, const std::string& got);
