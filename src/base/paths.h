// Path helpers that work on the text of a path alone.
#pragma once

#include <string>

// What stands before the last "." of the whole text (folder part included); without one, the text.
std::string StripExtension(const std::string& path);

// What stands after the last slash or backslash; without one, the text.
std::string StripFolder(const std::string& path);

// What stands before the last slash or backslash; without one, the empty string.
std::string FolderOf(const std::string& path);

// The folder that the Includes of a program are resolved against: "." for a source without folder part.
std::string SourceFolderOf(const std::string& mainSource);
