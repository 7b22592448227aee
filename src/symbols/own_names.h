// Names of ours in the generated code: helper variables, helper functions, size constants. They stand beside the
// names of the program's author and keep their plain form wherever it is free.
#pragma once

#include <string>
#include <unordered_map>

// The name in the whole program: `plain`, or longer where a name of the program comes out the same in C++.
std::string OwnName(std::string plain);

// The same for a variable of which one line may need several: no two calls on one line give the same name.
std::string FreshName(const std::string& plain);
// When all files have been read: words that come up from now on are the translator's own, and decide about no names.
void CloseNamesOfProgram();
// Whether it is a word of the program.
bool IsWordOfProgram(const std::string& text);

// Before a file is translated: its lines have no such names yet.
void ResetFreshNames();

// The words that decided about such names since this was called last, and whether the program had them: kept for those
// only who keep records of what came out (settings.record).
using AskedWords = std::unordered_map<std::string, bool>;
AskedWords ExchangeAskedWords(AskedWords others);

// Name of the constant that holds the size of dimension k: "KVL_a_size_0".
std::string SizeName(const std::string& cppName, int dimension);

// The checked division and remainder of safe mode.
std::string SafeDivName();
std::string SafeModName();
