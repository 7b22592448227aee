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
FilesRead FilesReadByCompiler(const Job& job);

// What the linker read, and the folders where it looked for the user's libraries; empty if it kept no record.
std::vector<std::string> FilesReadByLinker(const Job& job);
