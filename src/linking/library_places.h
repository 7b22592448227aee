// Where a library may be copied to.
#pragma once

#include <string>

// What speaks against copying a library of this name into the output folder: "would be copied over ...", a source,
// an output or a record of this program, or out of the folder. Empty when nothing does.
std::string LibraryObstacle(const std::string& name);
