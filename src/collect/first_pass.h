// The first pass: reads a file once from top to bottom and collects its declarations into the symbol
// tables and into the lists from which the file's header is written.
#pragma once

#include <string>
#include <vector>

#include "lexer/lexer.h"
#include "symbols/symbols.h"

struct Prototype {
    std::string text;         // "int KVL_Twice(int KVL_n);"
    std::string name;         // as written
    std::string wrapper;      // Extern functions: what follows the extern "C" section, or empty
    std::string lateWrapper;  // the definition of such a wrapper where that takes support code; else empty
    bool isExtern = false;
    bool bound = false;    // an Extern function whose prototype names its symbol
    bool again = false;    // an Extern function that was declared before, in this or another file
    bool clashes = false;  // another Function of the name is declared elsewhere
    int line = 0;
};

// What one file declares, in order of appearance.
struct Declarations {
    std::string source;
    std::string mainName;                   // how the file spells Main, when it has it
    int lastLine = 0;                       // as the first pass counts
    std::vector<const ClassInfo*> classes;  // Types and Elements met, duplicates included
    std::vector<Prototype> functions;       // Main has none
    std::vector<std::string> globalNames;   // PreCalc tables included
    std::vector<std::string> constNames;
    std::size_t typedGlobals = 0, typedConsts = 0;
    std::size_t functionCount = 0;      // Main included
    int unclosedExtern = 0;             // line of an Extern without closer, or 0
    std::vector<std::string> includes;  // as written
};

// Goes through the file that an Include names; false when nothing more can be collected.
using IncludeFollower = bool (*)(const std::string& name);

// Collects the declarations of out.source. False when nothing more can be collected, of any file; mistakes are kept,
// those that end the file are thrown.
bool CollectDeclarations(Declarations& out, IncludeFollower follow);
