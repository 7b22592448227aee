// Names that the C library or the Windows headers already give to something of their own.
#pragma once

#include <string>

// True when a function of this name in the global namespace of the generated program could clash: with
// library functions, variables and macros on either platform, or with the support code's own names.
bool ClashesWithLibrary(const std::string& name);

// True for names that the Windows headers define as macros; a parameter cannot bear them.
bool IsWindowsMacro(const std::string& name);

// True when the headers of a generated program declare the name in the global namespace or in std, so that an
// Extern function of the name could contradict them or be ambiguous.
bool IsDeclaredByHeaders(const std::string& name);

// True for classes, templates and objects of std, with which a variable of the name would be ambiguous.
bool IsOfCppLibrary(const std::string& name);

// True for names of the C library that mean a variable, a macro or a type.
bool IsLibraryNonFunction(const std::string& name);
