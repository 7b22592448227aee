// One declaration of a Local, Global, Const or Field: checks it, registers it and words it in C++.
#pragma once

#include <string>
#include <vector>

#include "base/token_span.h"
#include "statements/state.h"

enum class DefinitionKind : unsigned char { Field = 1, Local = 2, Global = 4, Const = 8 };

struct Definition {
    std::string name;  // as written
    std::string cppName;
    Code text;                 // the C++ declaration, without the keyword-dependent place it goes to
    Code before;               // lines that have to stand before it
    std::string after;         // lines that have to stand behind it: filling loops
    std::string declaration;   // Globals and Consts that may move: the extern lines ...
    std::string moved;         // ... and what defines the variable elsewhere
    std::string registration;  // Locals: puts a created object on its Type's list
    std::vector<std::string> sizeNames;    // tokens of array sizes that are no constants
    bool handsOnBools = false;             // of an array: see Variable
    const ClassInfo* mentioned = nullptr;  // class that the variable's type names
    bool usesPrelude = false;              // the text names what only the main header declares
    Code late;                             // of a Field that gets its value behind all others: the assignment
    bool constant = false;                 // the variable has its value before any code runs
    std::string again;                     // the assignment of its value, where that can stand alone
    std::string empty;                     // the definition without a value, when it needs one before that
};

// Ends the run when no Global, Const or PreCalc table may have the name.
void CheckGlobalName(const std::string& name);

// Tokens: name [: type | [size]...] [= value]. Whatever is wrong ends the run.
Definition CreateDefinition(State& state, TokenSpan tokens, DefinitionKind kind);
