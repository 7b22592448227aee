// C functions of Extern blocks, as the header declares them. Strings cross as texts that end in a zero; a
// function that inline C++ of the program defines gets them in the types that stand there.
#pragma once

#include <string>

#include "symbols/symbols.h"

// Ends the run when the name belongs to the C library but means no function there.
void CheckExternName(const std::string& name);

// What stands for an Extern function in C++.
struct ExternTexts {
    std::string cppName;    // under which calls reach it: its own, or one of ours
    std::string prototype;  // inside extern "C"
    std::string wrapper;  // behind it, for functions that take or give Strings, without the body; else empty
    std::string body;     // of the wrapper
    bool bound = false;   // the prototype names the symbol, which takes macros of the header
};

// The parameters must be settled. What comes out:
//     int Draw(int KVL_x);
//     long __kvExtern_time(void* KVL_p) __asm__(KV_C_NAME("time"));
//     int __kvC_puts(const char* KVL_s) __asm__(KV_C_NAME("puts"));
//         and behind: inline int __kvExtern_puts(const std::string& KVL_s) { return __kvC_puts(KVL_s.c_str()); }
//     int OpenGate(const char* KVL_name);
//         and behind: inline int __kvExtern_OpenGate(const std::string& KVL_name) { ... }
ExternTexts TextsOfExtern(const Routine& routine);
