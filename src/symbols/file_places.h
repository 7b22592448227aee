// Where files that a program names are looked for, the first place that has one: an Include beside the main source, then
// among the modules of the language, then where userlibs are; a userlib in the installation's folder of them, then in
// the program's own, "userlibs" beside the main source.
#pragma once

#include <string>
#include <vector>

// All places of an Include's file, with slashes, and of a userlib's declarations or library.
std::vector<std::string> PlacesOfInclude(const std::string& name);
std::vector<std::string> PlacesOfUserlib(const std::string& name);

// The first place where something stands; where nothing does, the first of all.
std::string FirstOf(const std::vector<std::string>& places);

// "looked for /a/x.kvl and /b/x.kvl".
std::string LookedFor(const std::vector<std::string>& places);
