// What a program is made from, so far as it is known afterwards.
#pragma once

#include <string>
#include <vector>

#include "kv/job.h"

// The tools and what they read from the installation.
std::vector<std::string> ToolFiles(const Job& job);

// What the translation read: the main source, all that it includes, and the declarations of libraries that these
// import.
std::vector<std::string> FilesTranslated(const Job& job);

// Files that the translation would read in place of what it has found in another place, were they there.
std::vector<std::string> RivalsOfTranslation(const Job& job);

// What the C++ compiler read beside the precompiled header and what comes with it and the system: files that are
// generated, and headers of the user's, wherever they lie.
struct FilesRead {
    std::vector<std::string> generated;
    std::vector<std::string> headers;
    std::vector<std::string> rivals;  // what the compiler would have taken for a header, were it there
};
// Returns false when a record cannot be that of the last compilation: it does not name the file that was compiled.
bool FilesReadByCompiler(const Job& job, FilesRead& files);

// What the linker read, and the folders where it looked for the user's libraries; empty if it kept no record, or one
// that does not name the compiled program.
std::vector<std::string> FilesReadByLinker(const Job& job);

// All files of the user's and of the installation that the program is made from, by full path: what a program that is
// left somewhere must not overwrite.
std::vector<std::string> MadeFrom(const Job& job);
