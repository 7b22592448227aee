// What is compiled once per compiler and flags and kept in the user's cache folder, which can be removed at any time: the
// standard headers that every generated program begins with, which saves most of the time of a quick compilation, and
// the code that tells of failures.
#pragma once

#include <string>
#include <vector>

struct PrecompileJob {
    std::vector<std::string> compiler;  // first words of its command
    std::string includeFolder;          // conio.h, kvfailure.cpp
    std::string optimisation;
    bool debug = false;
    bool places = false;  // failing programs say where
    bool verbose = false;
};

// The folder that holds all headers; empty when there is no cache folder.
std::string PreludesFolder();

// The header to hand to the compiler with -include. Another compiler, other flags or another conio.h give another
// one. It is made, together with its compiled form, unless both are there as they were made; two builds at once do it
// once. Empty when that is not possible: then the compiler has to do without.
std::string PreparePrelude(const PrecompileJob& job);

// Removes the compiled form of a header, so that it is made again.
void DropPrelude(const std::string& header);

// The object to link to programs that tell of their failures, made in the same way. Empty when that is not possible.
std::string PrepareFailureCode(const PrecompileJob& job);
// The same for programs that are made for the debugger.
std::string PrepareDebuggerCode(const PrecompileJob& job);
