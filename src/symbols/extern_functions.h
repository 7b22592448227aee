// C functions of Extern blocks, as the header declares them.
#pragma once

#include <string>

#include "symbols/symbols.h"

// The C++ name under which calls reach an Extern function: its own, or one of ours when the libraries declare
// that name with other types. The parameters must be settled.
std::string ExternCppName(const Routine& routine);

// Ends the run when the name belongs to the C library but means no function there.
void CheckExternName(const std::string& name);

// Declares the function inside extern "C":
//     int Draw(int KVL_x);
//     long __kvExtern_time(void* KVL_p) __asm__(KV_C_NAME("time"));
//     int __kvC_puts(const char* KVL_s) __asm__(KV_C_NAME("puts"));
std::string ExternPrototype(const Routine& routine);

// What stands behind the extern "C" section for a library function that takes or gives Strings; else empty:
//     inline int __kvExtern_puts(const std::string& KVL_s) { return __kvC_puts(KVL_s.c_str()); }
std::string ExternWrapper(const Routine& routine);

// The macros that the section needs when a function has a name of ours.
extern const char* const externNameMacros;
