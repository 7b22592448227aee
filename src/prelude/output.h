// The generated files in memory: a .cpp as a list of top-level pieces, a header as sections.
// Pieces are joined when a file is written; those that must come earlier or later in the program
// (main, and what uses a class before its body) are moved as wholes, never by reading text again.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "symbols/symbols.h"

struct Piece {
    enum class Kind : unsigned char {
        Lines,        // whatever stands between the others
        ClassOpen,    // the opening lines of a class body
        ClassLines,   // Fields and other lines inside a class body
        Method,       // one Method inside a class body
        ClassClose,   // the closing lines
        Function,
        Main,
        Include,      // the #include line of an included .cpp
        Definition,   // of a Global that the header declares extern
    };
    Kind kind = Kind::Lines;
    std::string text;
    const ClassInfo* cls = nullptr;             // the class that the piece belongs to
    std::vector<const ClassInfo*> needs;        // classes whose bodies must stand before it
    std::string file;                           // Include: the included source
    std::string declaration;                    // Method: its line in the class when the body moves out
    std::string definitionHead;                 // Method: the signature line outside the class
};

// A Global, Const or PreCalc table as the header gets it.
struct GlobalDefinition {
    std::string plain;                    // the definition line for the header
    std::string declaration;              // the extern line, when the definition has to move; empty: cannot move
    std::string definition;               // the line that defines it then
    std::vector<const ClassInfo*> needs;  // classes that must be complete before `plain`
    bool needsPrelude = false;            // uses KVSeq or other support code
};

struct FileOutput {
    std::string source;      // path of the Korvel file as opened
    std::string folder;      // output folder
    std::string base;        // base name, ".debug" included for the main file of a debug build
    bool isMain = false;
    std::string headerTop;   // from the guard to the function declarations
    std::string headerGlobals;
    bool globalsBegun = false;  // "// Global variables and constants" has been written
    std::deque<Piece> pieces;
    std::vector<GlobalDefinition> globals;
};

// Appends a finished line to the open piece.
void PutLine(FileOutput& out, const std::string& line);
// Starts a piece; lines that follow go to it until the next one starts.
Piece& BeginPiece(FileOutput& out, Piece::Kind kind, const ClassInfo* cls = nullptr);
// Hands a Global, Const or PreCalc definition to the header.
void PutGlobal(FileOutput& out, const GlobalDefinition& definition);

// Notes that the text being produced uses the body of a class (a member, new, delete, a value of an
// Element, its instance list), so the open piece must stand after it.
void NeedClass(const ClassInfo* cls);
// Collects the needs of what is translated until Stop is called, instead of noting them in the open piece.
std::vector<const ClassInfo*>* CollectNeedsInto(std::vector<const ClassInfo*>* list);
