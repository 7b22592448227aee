// What a program with userlibs needs beside its C++: the DLLs and the linker flags.
#pragma once

#include <string>

// Copies every declared DLL from the userlibs folder into the output folder. One that is not there is a
// warning; a destination that cannot be written ends the run.
void CopyUserlibDLLs(const std::string& outputPath);

// The Linker statement: takes its second token and adds the flag, once, to symbols.linkerFlags.
void AddLinkerFlag(const std::string& token);
