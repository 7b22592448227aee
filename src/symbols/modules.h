// The modules that come with the language. They lie in lib/std of the installation, and Include "std/NAME.kvl" finds
// them where the program has no such file of its own. What their inline C++ and Extern functions do is known: none of
// it stands in the way of what programs without inline C++ get.
#pragma once

#include <set>
#include <string>

// Where the module of an Include's name would lie; empty when the name cannot mean one.
std::string PlaceOfModule(const std::string& includeName);
// The path of the module that an Include names, with slashes; empty when it names none that is there.
std::string PathOfModule(const std::string& includeName);

// Whether a source is a module, by its path as opened.
bool IsModule(const std::string& path);
// Whether all that such a module's Extern functions do is to work out their result.
bool IsPureModule(const std::string& path);
// The file that would be read in place of a module, were it there.
std::string OwnFileFor(const std::string& module);

// Whether the program declares functions of C itself.
bool HasForeignFunctions();

// The names by which the modules are included.
std::set<std::string> AllModules();
// The same for a message; empty when the name means none of them.
std::string ModulesLike(const std::string& includeName);
