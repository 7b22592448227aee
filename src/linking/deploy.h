// The DLLs that a program with userlibs needs beside it.
#pragma once

#include <string>

// Copies every declared DLL from the userlibs folder into the output folder, or a folder in it. One that is not
// there is a warning; a destination that cannot be written ends the run.
void CopyUserlibDLLs(const std::string& outputPath);
