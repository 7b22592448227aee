// The C++ compiler: finding one, and the command that makes a program of generated C++.
#pragma once

#include <string>
#include <vector>

struct CompileJob {
    std::string mainCpp;
    std::string program;        // the executable to write
    std::string dependencies;   // receives the files that were read, as a rule for make
    std::string includeFolder;  // conio.h and kvdebug.h
    std::string sourceFolder;   // where C++ written by the user finds its headers
    std::string prelude;        // header to read first, compiled ahead; empty: none
    std::string optimisation;   // "-O0"
    bool debug = false;
    std::vector<std::string> linkerFlags;
};

// The compiler as the first words of a command, its program as a full path: $CXX, else g++, clang++ or c++.
// Empty, with `problem` set, when there is none.
std::vector<std::string> FindCompiler(std::string& problem);

// The whole command.
std::vector<std::string> CompileCommand(const std::vector<std::string>& compiler, const CompileJob& job);
