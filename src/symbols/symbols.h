// All process-wide tables of a run, in one place. The first pass fills them file by file; they are
// never emptied during a run.
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "lexer/lexer.h"
#include "symbols/name_table.h"
#include "symbols/value_type.h"

// How the C++ text of an array is held.
enum class ArrayForm : unsigned char {
    None,
    Vector,   // declared array: std::vector, of vectors for more dimensions
    Pointer,  // parameter: a plain pointer whose sizes are not known
    Fixed,    // PreCalc table: a C array
    Owned,    // fresh from a call: a pointer that somebody has to take over
};

// A variable of any kind: Local, parameter, loop variable, Global, Const, Field, PreCalc table.
struct Variable {
    std::string name;     // as written
    std::string cppName;  // as emitted
    ValueType type;
    ArrayForm form = ArrayForm::None;
    std::vector<std::string>
        sizes;  // size texts of an array, one per dimension, as written (tokens joined by blanks)
    bool isConst = false;
    bool isPreCalc = false;
    bool isParameter = false;
    bool handsOnBools = false;  // an array of Bool whose items are KVBools (Support::BoolArray)
    bool slot = false;          // an Element reached through a pointer (EachIn over an array of Elements)
    bool isItem = false;        // refers to an item of a Sequence (EachSeq)
    bool isPrivate = false;     // Fields only
    Token file;                 // where it was declared; of Locals and the like only the line is kept
    int line = 0;
    Tokens initialiser;           // Globals, Consts and Fields; the type of untyped ones is inferred from it
    bool typed = false;           // declared with a ":" type
    bool isReached = false;       // Consts: the second pass has come to the declaration
    bool isTakenEarlier = false;  // Consts: a Local, parameter or loop variable before it has the name
};

struct Parameter {
    std::string name;
    ValueType type;
    bool hasDefault = false;
    Tokens defaultValue;   // a literal, a signed number, True/False/Null, a Const, CallerPlace or ItemCount
    bool untyped = false;  // takes the type of its default value
    bool placed = false;   // the default value is CallerPlace: where the call stands, "lib/game.kvl:12"
    bool counted = false;  // ItemCount: how many items the first argument, an array, has; -1 if nobody knows
};

// A Function, Method or userlib function as calls see it.
struct Routine {
    std::string name;     // as written
    std::string cppName;  // as emitted ("kvl_" + name for userlib functions)
    ValueType result = Single(Base::Void);
    std::vector<Parameter> parameters;
    std::vector<std::string> resultSizes;  // of the array that its Returns give; empty texts when not known
    bool isExtern = false;
    bool isUserlib = false;
    bool isPrivate = false;
    const ClassInfo* owner = nullptr;  // Methods
    Token file;
    int line = 0;
};

// Whether a call without arguments will do.
inline bool NeedsNoArguments(const Routine& routine) {
    return routine.parameters.empty() || routine.parameters.front().hasDefault;
}

// One Type or Element. Its name is known from the start of the run; the rest is filled by the first
// pass when its block is closed, which also puts it on classList.
struct ClassInfo {
    std::string name;
    Token sourceFile;
    bool isElement = false;
    Tokens fields;                   // in declaration order
    Tokens methods;                  // in declaration order
    std::vector<std::string> third;  // kept empty; part of the record's layout
    // For verbose runs: typed Fields only, C++ spelling, "int[10]" for arrays.
    std::map<std::string, std::string> fieldTypes;

    std::string cppName;
    int line = 0;
    bool registered = false;      // on classList
    NameTable<Variable> members;  // Fields
    NameTable<Routine> routines;  // Methods ("constructor", "destructor" included)
};

struct UserlibParameter {
    std::string name, korvelType, cppType;
};
struct UserlibFunction {
    std::string name, symbol, korvelReturn, cppReturn;
    std::vector<UserlibParameter> parameters;
    std::string declsFile;
    int line = 0;
};
struct UserlibDll {
    std::string name;
    std::vector<UserlibFunction> functions;
};

struct Symbols {
    // Types and Elements. Written by the name scan (names) and the first pass (the rest).
    std::deque<ClassInfo> classes;                    // every name declared anywhere, stable addresses
    NameTable<ClassInfo*> classIndex{mark::classes};  // the first declaration of each
    std::vector<ClassInfo*> classList;                // registered ones, in order of registration

    // Functions, Extern functions included. Written by the first pass, read by calls.
    NameTable<Routine> functions{mark::functions};
    NameSet externFunctions{mark::externFunctions};

    // Globals, Consts and PreCalc tables. Written by the first pass, read by every look-up.
    NameTable<Variable> globals{mark::globals};
    NameTable<Variable> constants{mark::constants};

    // Every Field name, with the first class that has it: for the clash with Globals and Consts.
    NameTable<const ClassInfo*> fieldOwners{mark::fields};

    // Whether all declarations have been read, those of included files too. Written when that is done.
    bool complete = false;
    // Whether any source file holds inline C++. Written by the first pass.
    bool inlineCpp = false;

    // Userlibs. Written by Import, read by calls and by the runtime-linking code.
    std::deque<UserlibDll> userlibDLLs;
    NameTable<Routine> userlibRoutines{mark::userlibs};  // the later declaration of each

    // Paths of the program's source files, the main one first. Written by the name scan.
    std::vector<std::string> sourceFiles;
    // Files that are included inside Functions and Methods only, where their text is to stand, by their ids
    // (see FileId) with a number each. Written by the name scan.
    std::unordered_map<std::string, int> parts;

    // Names of files already included or imported, and what the run produces.
    std::unordered_set<std::string> processedNames;
    std::unordered_set<std::string> importedNames;  // those of Import lines
    std::vector<std::string> missingFiles;          // all places of Includes that are nowhere
    std::vector<std::string> includeHeaders;
    std::vector<std::string> includedSources;
    std::vector<std::string> generatedFiles;
    std::vector<std::string> linkerFlags;
    // What AddOnce put on which of these lists.
    std::unordered_map<const void*, std::unordered_set<std::string>> listed;
};

extern Symbols symbols;

// Exact, case-sensitive. Null when there is none.
ClassInfo* FindClass(Token name);
bool IsClass(Token name);                 // declared anywhere
bool IsElement(Token name);               // false when there is no such class
const Routine* FindFunction(Token name);  // Functions and Extern functions
bool HasMainFunction();                   // "main" in any letter case
const Routine* FindUserlibFunction(Token name);
const Routine* FindMethod(const ClassInfo& cls, Token name);
// The Field's type is settled like that of a Global.
const Variable* FindField(const ClassInfo& cls, Token name);

// A Global, Const or PreCalc table, its type settled (an untyped one takes that of its initialiser).
const Variable* FindGlobal(Token name);

// Adds text to a list of `symbols` unless it was added before.
void AddOnce(std::vector<std::string>& list, const std::string& text);
