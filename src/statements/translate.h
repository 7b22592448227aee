// Translation of one source file: first pass, header, second pass, outputs.
#pragma once

#include <string>

struct State;

// Translates the main source and everything it includes, then puts the pieces of the whole program
// into an order that compiles. Whatever is wrong ends the run.
void TranslateProgram(const std::string& mainSource);

// Translates one file into outputFolder. While `lenientRun` is set, unknown names are let through: an
// included file met in a first pass. Its statements wait for the strict run of the second pass, which
// tells everything that they would; only in verbose mode they are gone through, for the notes.
void TranslateFile(const std::string& path, const std::string& outputFolder, bool isMain, bool lenientRun);

// Translates a file that is included in the open routine, as if its statements stood there.
void TranslatePart(State& state, const std::string& path, const std::string& outputFolder);

// Splits the quoted name of an Include into its folder part ("" without one) and file part.
struct IncludeName {
    std::string name, folder, file;
};
IncludeName SplitIncludeName(const std::string& name);

// The output folder of an included file, created when it does not exist; failure ends the run.
std::string IncludeOutputFolder(const IncludeName& name);

// Lists the header of an included file for the main header, and the file as a dependency.
void NoteInclude(const IncludeName& name);

// A source in a folder whose name ends in .kvh contributes its header only.
bool IsHeaderOnly(const std::string& sourcePath);

// The path that opens an included file from the working directory.
std::string IncludeSourcePath(const IncludeName& name);
