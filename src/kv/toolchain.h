// The C++ compiler: finding one, and the command that makes a program of generated C++.
#pragma once

#include <string>
#include <vector>

struct CompileJob {
    std::string mainCpp;
    std::vector<std::string> objects;    // the compiled forms to link
    std::string newObject;               // the compiled form to write
    std::string newProgram;              // the executable to write
    std::string newDependencies;         // receives the files that were read, as a rule for make
    std::string includeFolder;           // conio.h and kvdebug.h
    std::string sourceFolder;            // where C++ written by the user finds its headers
    std::string prelude;                 // header to read first, compiled ahead; empty: none
    std::vector<std::string> unitFlags;  // of a part of the program that is compiled on its own
    std::string optimisation;            // "-O0"
    bool debug = false;
    bool safe = false;
    bool isForWindows = false;    // which this system need not be
    bool isStatic = false;        // linked with nothing that the system would have to have
    bool places = false;          // failing programs say where
    std::string failureCode;      // what says it: an object to link; empty: none
    std::string debuggerCode;     // the debugger's side in the program: an object to link; empty: none
    std::string cppFolder;        // of the generated files
    bool loadsLibraries = false;  // while it runs
    std::vector<std::string> linkerFlags;
    std::vector<std::string> quickLinking;  // flags that are not needed
    bool isTrial = false;                   // linking may well fail, and something else is done then
};

// The compiler as the first words of a command, its program as a full path: $CXX, else g++, clang++ or c++.
// Empty, with `problem` set, when there is none.
std::vector<std::string> FindCompiler(std::string& problem);

// The same for programs for Windows: this system's compiler where that is Windows, else that of MinGW-w64.
std::vector<std::string> FindCompilerForWindows(std::string& problem);

// The files that a changed compiler changes: all the programs among the words of its command.
std::vector<std::string> CompilerFiles(const std::vector<std::string>& compiler);

// Whether it is g++, or seems to be: clang++ knows other flags.
bool IsGnu(const std::vector<std::string>& compiler);

// The folders of the headers that change only with the compiler or the system.
std::vector<std::string> CompilerFolders(const std::vector<std::string>& compiler);

// The full path of a program that PATH, or a path itself, leads to; empty if none does.
std::string FindProgram(const std::string& name);

// Whether compiling and linking can be done one after the other: flags of the user's may name further files to compile,
// or mean anything else that has to stand in one command.
bool CanLinkApart(const std::vector<std::string>& linkerFlags);

// The flags that make tables of lines: whole ones for debuggers, else the little that failing programs need.
std::vector<std::string> LineTableFlags(bool debug, bool places);

// The commands that only look for mistakes, that compile, that link, and that do both at once.
std::vector<std::string> SyntaxCommand(const std::vector<std::string>& compiler, const CompileJob& job);
std::vector<std::string> CompileCommand(const std::vector<std::string>& compiler, const CompileJob& job);
std::vector<std::string> LinkCommand(const std::vector<std::string>& compiler, const CompileJob& job);
std::vector<std::string> WholeCommand(const std::vector<std::string>& compiler, const CompileJob& job);

// The flag that chooses a linker that is quicker than the usual one, if one is installed. The compiler may not know it.
std::vector<std::string> QuickLinkerFlags();

// The flag that makes the linker say in `file` what it read, for linkers that can.
std::vector<std::string> LinkerRecordFlags(const std::string& file);
