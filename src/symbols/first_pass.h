// The first pass: reads a file once from top to bottom and collects its declarations into the symbol
// tables and into the lists from which the file's header is written.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "lexer/lexer.h"
#include "symbols/symbols.h"

struct Prototype {
    std::string text;     // "int KVL_Twice(int KVL_n);"
    std::string name;     // as written
    std::string wrapper;  // Extern functions: what follows the extern "C" section, or empty
    bool isExtern = false;
    bool bound = false;    // an Extern function whose prototype names its symbol
    bool again = false;    // an Extern function that was declared before, in this or another file
    bool clashes = false;  // another Function of the name is declared elsewhere
    int line = 0;
};

// What one file declares, in order of appearance.
struct Declarations {
    std::vector<const ClassInfo*> classes;         // Types and Elements met, duplicates included
    std::vector<std::string> forwardDeclarations;  // "class KVL_TPlayer;", one per entry of `classes`
    std::vector<Prototype> functions;              // Main has none
    std::vector<std::string> globalNames;          // PreCalc tables included
    std::vector<std::string> constNames;
    std::vector<std::string> preCalcNames;
    std::vector<std::pair<std::string, std::string>> typedGlobals;  // name, C++ type
    std::vector<std::pair<std::string, std::string>> typedConsts;
    std::size_t functionCount = 0;      // Main included
    int unclosedExtern = 0;             // line of an Extern without closer, or 0
    std::vector<std::string> includes;  // as written
};

// Collects the declarations of a source; included files are translated where they are met. A file that is
// read again finds its own declarations. Whatever is wrong ends the run.
void CollectDeclarations(const std::string& source, Declarations& out);

// Whether the first pass or the name scan looks at statements that begin with the word.
bool IsCollected(Keyword keyword);
