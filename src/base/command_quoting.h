// Command lines as text: splitting linker flags, quoting arguments.
#pragma once

#include <string>
#include <vector>

// Splits flags at blanks. Double or single quotes hold blanks together, also in the middle of a flag (-L"my dir"),
// and are dropped; a backslash is an ordinary character.
std::vector<std::string> SplitFlags(const std::string& text);

// The arguments as one line that programs on Windows split into exactly these arguments again.
std::string WindowsCommandLine(const std::vector<std::string>& arguments);

// The arguments as a line to read, or to paste into a shell.
std::string ReadableCommandLine(const std::vector<std::string>& arguments);
