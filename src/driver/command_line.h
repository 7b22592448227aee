// The command line: banner, usage and the walk over the arguments.
#pragma once

#include <string>
#include <vector>

void PrintBanner();

// Fills `settings` from the arguments (program name left out) and notes each on standard output.
// With too few of them it prints the usage and returns false; the run then ends with status 0.
bool ParseCommandLine(const std::vector<std::string>& arguments);
