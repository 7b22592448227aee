// From C++ to a program: calls the C++ compiler.
#pragma once

#include <string>
#include <vector>

#include "kv/job.h"

// Finds or makes what tells of the failures of the job's program, and the debugger's side in it.
void ChooseRuntimeCode(Job& job);

// How the job's generated files are compiled, in one line that differs for different ways.
std::string CompilationOf(const Job& job);

// Compiles and links into the build folder what has changed, with the shared libraries beside the program. The program
// of an earlier build stays until the new one is complete. Returns false after telling the user what went wrong, unless
// the build was disturbed.
bool Compile(Job& job);

// Has the C++ compiler look for mistakes, and make nothing. Returns false after telling the user of some, unless the build
// was disturbed.
bool CheckCpp(Job& job);

// The shared libraries that the program loads, by file name or a path below the program's folder, as far as they
// were found.
std::vector<std::string> SharedLibraries(const Job& job);
