// What a program is made from, so far as it is known afterwards.
#pragma once

#include <string>
#include <vector>

#include "kv/job.h"

// The tools and what they read from the installation.
std::vector<std::string> ToolFiles(const Job& job);

// What the C++ compiler read beside the precompiled header: files that kvt generates, and headers of the user's.
struct FilesRead {
    std::vector<std::string> generated;
    std::vector<std::string> headers;
};
// Returns false when its record cannot be that of the last compilation: it does not name the main file.
bool FilesReadByCompiler(const Job& job, FilesRead& files);

// What the linker read, and the folders where it looked for the user's libraries; empty if it kept no record, or one
// that does not name the compiled program.
std::vector<std::string> FilesReadByLinker(const Job& job);
