// The compiler as a library: everything that another program needs of it.
//
// One program is looked at at a time, and from one thread: a process has one set of tables. Every call begins with
// fresh ones, so what is asked before has no influence. Nothing is printed, and only Build writes files.
#pragma once

#include <string>
#include <vector>

#include "base/diagnostic.h"

namespace korvel {

// A text that counts instead of the file at the path, which need not exist.
struct Overlay {
    std::string path, text;
};

struct Request {
    std::string installation;  // the folder with config/ and userlibs/; empty for the working directory
    std::string source;        // the main file; Includes are found from its folder
    std::string output = ".";  // the folder that the paths of the generated files begin with
    std::vector<Overlay> overlays;

    // The flags of kvt.
    bool warnings = true;  // -warn
    bool debug = false;
    bool debugger = false;  // with debug: for include/kvdebugger.h
    bool safe = false;
    bool fast = false;
    bool units = false;  // with fast: larger programs come as several translation units (prelude/units.h)
    std::string
        record;  // with units: a file for what the next Build of a large program can take from this one
    std::string recordKey;    // what it is worthless without: which compiler this is, say
    bool recordsAll = false;  // of programs of all sizes
    bool places = false;      // the C++ leads back to the source: #line, and failures tell their place
    bool traced = false;      // -t
    bool commented = false;   // -c
};

struct GeneratedFile {
    std::string path, text;
};

struct Result {
    std::vector<Diagnostic> diagnostics;
    std::vector<std::string> sources;  // the files of the program, the main one first
    std::vector<std::string>
        declarations;  // the declaration files of libraries that it imports, and those that are there

    std::vector<std::string> missing;  // where files that it includes were looked for in vain

    // Of a program with nothing wrong in it.
    bool hasCpp = false;                   // in InlineCpp blocks, where only a C++ compiler finds mistakes
    std::string mainFile;                  // path of its main .cpp; empty when headers are all that comes out
    std::vector<std::string> linkerFlags;  // as written
    std::vector<std::string> libraries;    // names of the shared libraries it loads
    std::vector<GeneratedFile> files;      // only Translate tells them
    std::size_t recorded = 0;              // how many sources were taken from the record
};

// Whether no mistake has been found.
bool IsSound(const Result& result);

// Looks for mistakes; translates, too; leaves what comes out in the output folder as well, in place of what an earlier
// build of the program has left there, with the shared libraries that it loads.
Result Check(const Request& request);
Result Translate(const Request& request);
Result Build(const Request& request);

// What a program declares: its files, Types with their members, Functions, variables. It stands where its name does
// in its declaration; a file at its own beginning.
struct Symbol : Range {
    enum class Kind : unsigned char {
        File,
        Type,
        Element,
        Field,
        Method,
        Function,
        Global,
        Const,
        Local,
        Parameter
    };
    Kind kind = Kind::Type;
    std::string name;
    std::string owner;  // the Type or Element of a Field or Method, the routine of a Local or parameter
    std::string
        type;  // in Korvel's words, of a routine its result; empty where there is none or it is not known
    std::string parameters;  // of a routine: "(a:Int, b:String = \"x\")"
    std::string value;       // of a Const, as it is written
    int lastLine = 0;        // of a Local or parameter: where its scope ends
};

// A place where the name of a symbol stands, also in the holes of Strings. Of an Include it is the file's.
struct Use : Range {
    std::size_t symbol = 0;  // in the list
    bool declares = false;
};

// Tokens with a value of the type.
struct TypedRange : Range {
    std::string type;
};

// All that is known about a program that is being edited: with mistakes in it, what is right is told.
struct Inspection {
    Result result;  // without files
    std::vector<Symbol> symbols;
    // By file, as in result.sources, and place.
    std::vector<Use> uses;
    std::vector<TypedRange> types;
};
Inspection Inspect(const Request& request);

// What stands at a column of a line, or ends right before it; null without a name there.
const Use* UseAt(const Inspection& inspection, const std::string& file, int line, int column);
// The type of the shortest expression there; empty when it is not known.
std::string TypeAt(const Inspection& inspection, const std::string& file, int line, int column);

// What to write here for a word of another language, as a sentence; empty where there is nothing to say.
std::string AdviceOnWord(const std::string& word);

// Gives back what the last call still holds.
void Reset();

}  // namespace korvel
