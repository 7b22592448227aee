// The Linker statement.
#pragma once

#include <string>

// Takes the statement's second token and adds the flag, once per line, to symbols.linkerFlags; "-L." becomes the
// folder of the current source file.
void AddLinkerFlag(const std::string& token);

// Whether the program links what may call its Functions; the libraries of modules do not.
bool LinksForeignCode();

// The file for the flags, beside the main source.
std::string LinkerFlagsPath();
