// Userlib declaration files: which functions of which DLLs a program may call.
#pragma once

#include <string>
#include <vector>

// Reads one declaration file, which stands at the first of the places that has one, into symbols.userlibDLLs,
// userlibFunctions and userlibRoutines. A file that cannot be opened, a reserved name and a type that a DLL cannot
// take are mistakes; malformed lines are skipped.
void ImportUserlib(const std::vector<std::string>& places);
