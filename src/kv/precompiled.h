// The standard headers that every generated program begins with, compiled once per compiler and flags and kept in
// the user's cache folder. It saves most of the time of a quick compilation. The folder can be removed at any time.
#pragma once

#include <string>
#include <vector>

struct PreludeJob {
    std::vector<std::string> compiler;  // first words of its command
    std::string includeFolder;          // conio.h
    std::string optimisation;
    bool debug = false;
    bool verbose = false;
};

// The folder that holds them all; empty when there is no cache folder.
std::string PreludesFolder();

// The header to hand to the compiler with -include. Another compiler, other flags or another conio.h give another
// one. It is made, together with its compiled form, unless both are there as they were made; two builds at once do it
// once. Empty when that is not possible: then the compiler has to do without.
std::string PreparePrelude(const PreludeJob& job);

// Removes the compiled form of a header, so that it is made again.
void DropPrelude(const std::string& header);
