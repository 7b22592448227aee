// The generated files in memory: a .cpp as a list of top-level pieces, a header as sections.
// Pieces are joined when a file is written; those that must come earlier or later in the program
// (main, and what uses a class before its body) are moved as wholes, never by reading text again.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "base/rare.h"
#include "prelude/program_uses.h"
#include "symbols/symbols.h"

// The path of a part (a file included inside a routine) in the text that includes it.
struct PartPath {
    std::size_t at = 0, size = 0;
    std::string path;  // relative to the top output folder
};

struct Piece {
    enum class Kind : unsigned char {
        Opening,     // the opening lines of the .cpp
        Lists,       // definitions of the created lists
        Lines,       // whatever stands between the others
        ClassOpen,   // the opening lines of a class body
        ClassLines,  // Fields and other lines inside a class body
        Method,      // one Method inside a class body
        ClassClose,  // the closing lines
        Function,
        Main,
        Include,     // the #include line of an included .cpp
        Definition,  // of a Global that the header declares extern
    };
    // A program has so many pieces that what few of them have stands apart.
    struct Rest {
        std::string definitionHead;       // Method: the signature line outside the class
        std::vector<PartPath> partPaths;  // routines: in order
        Token file;                       // Include: the included source as opened,
        std::size_t globals = 0;          // and how many Globals and Consts the file has before it
    };
    std::string text;
    std::vector<const ClassInfo*> needs;  // classes whose bodies must stand before it
    const ClassInfo* cls = nullptr;       // the class that the piece belongs to
    Rare<Rest> rest;
    // Routines: where the text of the signature begins and ends, and the line of the opening brace.
    std::uint32_t signatureAt = 0, signatureEnd = 0, braceAt = 0, bodyAt = 0;
    int anchor = 0;  // the number of that of its marks, see line_marks.h; 0 without one
    int anchorLine = 0;
    Kind kind = Kind::Lines;
};

// A Global, Const or PreCalc table as the header gets it.
struct GlobalDefinition {
    std::string name;                     // as written
    std::string mark;                     // the #line directive in front of whichever line it gets
    std::string plain;                    // the definition line for the header
    std::string declaration;              // the extern line, when the definition has to move
    std::string definition;               // the line that defines it then
    std::vector<const ClassInfo*> needs;  // classes that must be complete before `plain`
    std::vector<std::string> sizeNames;   // tokens of array sizes that only the running program knows
    bool needsPrelude = false;            // uses KVSeq or other support code
    bool constant = false;                // a Global or Const that has its value before any code runs
    std::string again;                    // the assignment of its value, where that can stand alone
    std::string empty;                    // its definition without a value, when it needs one before that
    std::size_t number = 0;               // its place among those of all files, Includes where they stand
    bool isPreCalc = false;               // written without the comment line before it
    bool moved = false;  // `plain` is the declaration, the definition stands in a later place
};

// One file's outputs. Filled by the first pass (header sections) and the second (globals, pieces).
struct FileOutput {
    std::string source;  // path of the Korvel file as opened
    std::string folder;  // output folder
    std::string header;  // path of the header relative to the top output folder
    std::string base;    // base name, ".debug" included for the main file of a debug build
    std::string guard;   // of its header
    bool isMain = false;
    bool isModule = false;      // of the installation
    bool headerOnly = false;    // from a .kvh folder: its .cpp is dropped
    bool metAgain = false;      // included more than once: its text must count once
    bool isSettled = false;     // a part whose text is there
    std::string headerOpening;  // from the guard to "using namespace std;" and its empty line
    std::string headerClasses;  // forward declarations, instance lists, iteration helpers
    std::string headerFunctions;
    std::vector<GlobalDefinition> globals;
    std::string headerLate;  // main file only: definitions that had to leave other headers
    std::vector<const ClassInfo*> forwardDeclared;  // by headerClasses
    std::vector<const ClassInfo*> classesInHeader;  // that prototypes and globals mention
    std::vector<std::string> functionNames;         // with prototypes in headerFunctions, as written
    std::deque<Piece> pieces;
    std::vector<std::string>
        routines;              // of a program in units: their texts, which stand apart from the pieces
    std::vector<int> anchors;  // the lines of the source where they stand
    bool isInUnits = false;    // these lie in their units already
    std::size_t firstUnit = 0, unitCount = 0;
    std::uint32_t support = 0;  // the support code that it needs, a bit for each
    ProgramUses uses;
    bool leansOnOthers = false;  // what it came to depends on more than reuse/reuse.h knows of
};

std::string HeaderPath(const FileOutput& out);
std::string CppPath(const FileOutput& out);

// A path from the top output folder as an #include in the file names it.
std::string PathSeenFrom(const FileOutput& out, const std::string& path);
// Makes the paths of parts in the text those that `out` sees.
void RewritePartPaths(const FileOutput& out, std::string& text, std::vector<PartPath>& paths);

// Appends a finished line to the open piece.
void PutLine(FileOutput& out, std::string_view line);
// Starts a piece; lines that follow go to it until the next one starts.
Piece& BeginPiece(FileOutput& out, Piece::Kind kind, const ClassInfo* cls = nullptr);
// Hands a Global, Const or PreCalc definition to the header.
void PutGlobal(FileOutput& out, GlobalDefinition definition);

// The same with one that has been marked before.
void PutMarkedGlobal(FileOutput& out, GlobalDefinition definition);

// Makes `out` the file whose last piece is the open one (an included file has its own).
// Returns the one before.
FileOutput* SetOpenOutput(FileOutput* out);
// The file whose statements are translated; null between them.
FileOutput* OpenOutput();
// Notes that what it comes to depends on the translation of other files, or they on its.
void LeanOnOthers();

// Notes that the text being produced uses the body of a class (a member, new, delete, a value of an
// Element, its instance list), so the open piece must stand after it.
void NeedClass(const ClassInfo* cls);
// Collects the needs of what is translated into `list` instead of noting them in the open piece;
// null goes back to the open piece. Returns what was in force before, for restoring it.
std::vector<const ClassInfo*>* CollectNeedsInto(std::vector<const ClassInfo*>* list);
