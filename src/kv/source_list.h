// The sources that a name on the command line stands for.
#pragma once

#include <string>
#include <vector>

// A file stands for itself, a folder for all that it holds whose names end in `ending`, ordered by name. Hidden folders
// are kv's and other tools'.
std::vector<std::string> SourcesOf(const std::string& name, const std::string& ending);
