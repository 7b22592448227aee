// Whether a program must be made again: all the files it was made from, with their sizes and times.
#pragma once

#include <string>
#include <vector>

// One line about a file or folder, which changes when it does; one that is missing has a mark as well.
std::string MarkOf(const std::string& path);

// What something was made from, and what was made.
struct StampFiles {
    std::vector<std::string> sources;  // files and folders; they count by size and times
    std::vector<std::string>
        generated;  // files that each translation may write again; they count by their content
    std::vector<std::string> products;
    std::vector<std::string> rivals;  // what would be read in place of a source, mostly missing
};

// Whether the stamp was written for the same commands and none of its files has changed since, or come into being.
bool StampHolds(const std::string& stampFile, const std::string& commands);

// Writes a stamp. `started` is a file written when the build started: a source that changed since then, or so shortly
// before that its time could not show a further change, makes the stamp worthless and none is written.
void WriteStamp(const std::string& stampFile, const std::string& started, const std::string& commands,
                const StampFiles& files);

// The files named by the dependency record of the C++ compiler, and by the one of the linker, which leaves blanks in
// paths as they are. A record that is cut off names none.
std::vector<std::string> FilesInMakeRule(const std::string& rule);
std::vector<std::string> FilesOfLinker(const std::string& record);
