// Which files outside the output folder are ours.
//
// Where an Include leads out of the output folder, outputs lie among files that others wrote, whatever these are called
// and begin with. So a hidden file beside each output tells fingerprints of what was written there (".util.cpp.kvt"
// beside util.cpp); any program that includes the same source finds it. A file that holds something else is the user's.
#pragma once

#include <string>

// Whether a file holds what some run wrote there.
bool IsMarked(const std::string& path);

// Writes such a file. It is marked before, and replaced as a whole, so that a run that is killed leaves nothing that
// is not marked. False when that fails; then there is no file.
bool WriteMarked(const std::string& path, const std::string& text);

// Deletes a file and its mark.
void RemoveMarked(const std::string& path);
