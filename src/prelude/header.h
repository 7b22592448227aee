// The header of a generated file: guard, includes, prelude, declarations, globals.
#pragma once

#include <string>
#include <vector>

#include "prelude/output.h"

// What the first pass found in the file, as the header needs it.
struct HeaderContents {
    std::vector<const ClassInfo*> classes;        // declared in the file, in order
    std::vector<const ClassInfo*> instanceLists;  // registered classes declared in the file
    std::vector<std::string> externLines;         // prototypes of extern "C" functions
    std::vector<std::string> externWrappers;      // of those that take or give Strings
    bool externBound = false;                     // some prototypes name their symbols
    std::vector<std::string> functionLines;       // prototypes of the other functions
};

// In a program of several units it stands in front of every declaration of a routine.
constexpr const char* routineMark = "KV_ROUTINE ";

// The guard of a base name: MY_GAME_H for my-game, _3D_H for 3d.
std::string HeaderGuard(const std::string& base);

// The type of the list of objects that variables of a Type were declared with.
std::string CreatedListType(const ClassInfo& cls);

// Writes all header sections up to the function declarations into `out`.
void OpenHeader(FileOutput& out, const HeaderContents& contents);

// What all programs have and what this one needs, behind the standard headers.
std::string SupportCode();

// The whole header; `includes` are the headers that the main header includes.
std::string HeaderText(const FileOutput& out, const std::vector<std::string>& includes);
