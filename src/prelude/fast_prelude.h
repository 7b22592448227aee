// The support code of programs translated with -fast.
#pragma once

#include <string>

// Output, Sequences, timers and, for programs with Types, their lists; fitted to what the program uses,
// so it is asked for when all files are translated.
std::string FastPrelude(bool withTypes);
// Of a program in several units: the objects of its support code, which one of them has.
std::string FastObjects();
