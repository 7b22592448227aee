// Whether a program must be made again: all the files it was made from, with their sizes and times.
#pragma once

#include <string>
#include <vector>

// "size|time|path": changes when the file does; a file that is missing has a mark as well.
std::string MarkOf(const std::string& path);

// Whether the stamp was written for the same commands and none of its files has changed since.
bool StampHolds(const std::string& stampFile, const std::string& commands);

// Writes a stamp. `started` is a file written when the build started: a file that changed since then, or so shortly
// before that its time could not show a further change, makes the stamp worthless and none is written.
void WriteStamp(const std::string& stampFile, const std::string& started, const std::string& commands,
                const std::vector<std::string>& files, const std::vector<std::string>& products);

// The files named by the dependency record of kvt (main source first), and by the one of the C++ compiler.
std::vector<std::string> SourcesOf(const std::string& dependencyRecord);
std::vector<std::string> FilesInMakeRule(const std::string& rule);
