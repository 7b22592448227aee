// The .cpp of a generated file: its opening lines, and main() at its end.
#pragma once

#include <string>
#include <vector>

#include "prelude/output.h"

// Writes the opening lines into the first piece of `out`. `classes` are the registered ones that the
// file declares.
void OpenCpp(FileOutput& out, const std::vector<const ClassInfo*>& classes);

// The whole .cpp: pieces in their order, main() last with the start-up calls in it.
std::string CppText(const FileOutput& out);

// The verbose notes about moving main(), and the warning when the start-up call of the userlibs found
// no place in the program.
void SayPostProcessing(const FileOutput& out);
