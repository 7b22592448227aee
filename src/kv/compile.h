// From C++ to a program: calls the C++ compiler.
#pragma once

#include <string>
#include <vector>

#include "kv/job.h"

// The command that compiles the job's generated files into the program at `program`.
std::vector<std::string> JobCompileCommand(const Job& job, const std::string& program);

// Finds or makes the precompiled header that serves the job's compilation, if any.
void ChoosePrelude(Job& job);

// Compiles into the build folder, with the shared libraries beside the program. The program of an earlier build
// stays until the new one is complete. Returns false after telling the user what went wrong.
bool Compile(const Job& job);

// The shared libraries that the program loads, by file name, as far as kvt found them.
std::vector<std::string> SharedLibraries(const Job& job);
