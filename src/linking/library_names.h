// Names that the C library or the Windows headers already give to something of their own.
#pragma once

#include <string>

// True when a function of this name in the global namespace of the generated program could clash: with
// library functions, variables and macros on either platform, or with the support code's own names.
bool ClashesWithLibrary(const std::string& name);

// True for names that the Windows headers define as macros; a parameter cannot bear them.
bool IsWindowsMacro(const std::string& name);
