// One program on its way from source to output, with GoogleTest failures where it goes wrong.
#pragma once

#include <string>
#include <vector>

#include "case_file.h"

// Writes the files of a case, translates them with the flags of `mode` ("plain", "safe", "debug") and
// checks everything that the case expects.
void RunCase(const Case& test, const std::string& mode);

// The flags of kvt for a mode; an unknown one fails the test.
std::vector<std::string> FlagsOf(const std::string& mode);

// Name of the main .cpp that kvt writes for a source in a mode.
std::string MainCpp(const std::string& sourceFile, const std::string& mode);
