// Where kv keeps what it makes: the generated C++, the program, and what it needs to know for the next time.
//
//   .kvbuild/game.kvl/run-O0/        one folder per program and way of building it
//       cpp/_/_/_/                   what the compiler generates (unless --keep-cpp names another folder)
//       bin/game                     the program, with the shared libraries that it loads
//       program.o                    the compiled C++
//       stamp, compiled, linked      all that the program, program.o and bin/game were made from (kv/stamp.h)
//       translation                  what the compiler has found out (kv/translation.h)
//       translator-output.txt ...    what the tools said
//
// .kvbuild lies beside the source; where nothing can be written there, or it is not the user's own, all this goes to the
// user's cache folder, and without one to a private folder for temporary files. It can be removed at any time.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

struct BuildFolder {
    std::string folder;
    std::string cppFolder;
    std::string program;  // the executable
    std::string object;
    std::string stamp;
    std::string objectStamp;
    std::string linkStamp;
    std::string lock;
    std::string cppLock;  // for a folder that several builds may share; empty: it is this build's own
    std::string started;  // written when a build starts
    std::string translation;
    std::string translatorOutput;
    std::string translatorErrors;
    std::string compilerOutput;
    std::string compilerErrors;
    std::string dependencies;      // the files that the C++ compiler read
    std::string linkDependencies;  // the files that the linker read
    int place = 0;                 // the how manieth of the possible places
    std::string token;             // what `started` holds, unlike that of any other build
};

// Creates the folders for the source (a full path) and `variant`, in the first possible place from build.place on.
// `keepCppFolder` is a full path or empty; the program's name ends in `programSuffix`. Returns false and sets `problem` when there is no place to write, or the
// folder to keep the C++ in is not the user's own.
bool PrepareBuildFolder(const std::string& source, const std::string& variant,
                        const std::string& keepCppFolder, const std::string& programSuffix,
                        BuildFolder& build, std::string& problem);

// Where the folders of a source (a full path) may be, all ways of building it together, and the one that the programs of a
// folder have in it.
std::vector<std::string> BuildFoldersOf(const std::string& source);
std::string HiddenFolderOf(const std::filesystem::path& folder);

// Begins a build in the folder. Returns false when there is no room for one; the next place may have it.
bool BeginBuild(BuildFolder& build);

// For a build that has failed: when that may be for lack of room, the next place is to be tried, and the build counts
// as disturbed. Returns whether it is so.
bool GiveUpPlace(BuildFolder& build);

// The place has no file to lock: the next one is to be tried, or the same one without what stood in the way there.
void GiveUpLock(BuildFolder& build);

// Whether the build that was begun cannot go on: there is no room, or somebody has removed the folder since.
bool IsDisturbed(const BuildFolder& build);

// The name of a source without folder and extension: what its generated files and its program are called.
std::string ProgramName(const std::string& source);

// The whole content of a file; empty when it cannot be read.
std::string ReadWhole(const std::string& path);
