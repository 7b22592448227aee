// What the modules of the language offer, for advice to those who have not included them.
#pragma once

#include <map>
#include <string>

// The Functions and Types of all modules, and the names by which their modules are included. They are read when
// somebody asks for the first time.
const std::map<std::string, std::string>& ModuleNames();

// Include "std/text.kvl", as the program has to write it for this name; empty where the program knows the name already.
std::string IncludeFor(const std::string& name);
