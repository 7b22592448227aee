// What a program declares, for editors and other readers: Types with their members, Functions, Globals and Consts.
#pragma once

#include <string>
#include <vector>

namespace korvel {

struct Symbol {
    enum class Kind { Type, Element, Field, Method, Function, Global, Const };
    Kind kind = Kind::Type;
    std::string name;
    std::string owner;  // the Type or Element of a Field or Method
    std::string
        type;  // in Korvel's words, empty where it is not known; of a routine its result; empty for Types
    std::string file;
    int line = 0, firstColumn = 0, lastColumn = 0;  // of the name, as in a Diagnostic
};

// The declarations of the program that was looked at last (korvel.h), mistakes in it or not, file by file and in their
// order there. Those that are wrong themselves may be missing.
std::vector<Symbol> DeclaredSymbols();

}  // namespace korvel
