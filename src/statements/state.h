// The second pass's state for one file, and the line writer that every statement uses.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "base/report.h"
#include "base/token_span.h"
#include "expressions/expression.h"
#include "prelude/output.h"
#include "statements/blocks.h"
#include "statements/open_ifs.h"
#include "symbols/symbols.h"

struct LocalArray {
    Variable* variable = nullptr;
    bool ownsSlots = false;  // its slots hold objects that must be freed
    bool inOuterBlock = true;
};

// A variable that the routine's inline C++ knows by the plain name, although it has one apart.
struct NameApart {
    std::string name, cppName;
    std::size_t slot = 0;  // behind its declaration
    std::string indent;
};

// What is passed over behind a mistake (statements/recovery.h).
enum class Passing : unsigned char {
    Nothing,
    Routine,  // until its closer
    Class,    // until its closer
    PreCalc,  // until its closer
    Stray,    // outside of routines, until something is declared
    File,     // all the rest
};

// A place in the text of the open routine that may be filled until the routine ends.
struct Slot {
    std::size_t at = 0;  // in the text of its piece, which holds nothing of it
    std::string text;
    int walk = 0;  // a passage of the walk of this number
};

// How far the open routine has come.
struct RoutineEnd {
    std::size_t text = 0, slots = 0, parts = 0;
};

// A file included in the open routine. Its text is the routine's, whose slots may still be filled, until that ends.
struct RoutinePart {
    RoutineEnd begin, end;
    FileOutput* out = nullptr;
    std::string line;        // "#include ..." as it is to stand there
    std::size_t pathAt = 0;  // of the path in it
    std::size_t pathSize = 0;
};

// How far the lines of the open piece are those that the C++ compiler takes them for.
struct MarkedPlace {
    const Piece* piece = nullptr;
    std::size_t size = 0;     // of its text
    std::size_t slots = 0;    // of the routine
    int line = 0;             // of what comes next, as the compiler counts
    bool unfinished = false;  // a line of inline C++ goes on
};

// What of the state belongs to the place in the file that the statements stand in.
struct PlaceInFile {
    std::string traceText;    // with -t: source of the statement, until attached to a line
    std::string lineComment;  // with -c: "//..." of the source line, until its last statement begins
    std::string commentText;  // from there on, until attached to an emitted line
    int indent = 0;
    int line = 0;
    std::size_t statement = 0;                   // its place in the line
    bool inOneLineIf = false;                    // the statement stands behind a Then on the same line
    std::optional<StatementPlaces> ifsLeftOpen;  // of the file, once they have been asked for
    std::string closerMessage;                   // the first closer that cannot be let through, and its line
    int closerLine = 0;
    std::string closerWord;
    Elsewhere closerOther;                      // the block in its way
    int closedIf = 0;                           // the line of the last If that ended with its line
    std::size_t firstBlock = 0, firstWith = 0;  // of the file; what is open before stays open
    Passing passing = Passing::Nothing;
};

enum class RoutineKind : unsigned char { None, Function, Method };

// The routine that is open.
struct OpenRoutine {
    RoutineKind kind = RoutineKind::None;
    std::string name;  // as reports have it
    int line = 0;
    const Routine* declared = nullptr;
    std::string returnType;  // C++ spelling
    bool isMain = false;
    bool hasReturn = false;
    bool reachable = true;  // a run of the program may get to the next statement; errs on the side of yes
    std::vector<LocalArray> localArrays;
    bool watchesOwnObject = false;       // debug builds: the Method may remove its own object
    std::size_t frameRoom = 0;           // -fast: bytes that arrays may still take in the routine's frame
    bool holdsForeignBlock = false;      // a wrong statement begins one as other languages do
    bool bareLabel = false;              // nothing stands behind the label of the last Case or Default
    std::vector<Slot> slots;             // of its piece, in their order
    std::vector<NameApart> namesApart;   // in the order of their declarations
    std::vector<RoutinePart> parts;      // in the order of their beginnings
    std::vector<FileOutput*> openParts;  // those under way, the innermost last
};

// A With without its EndWith.
struct OpenWith {
    Tokens object;  // as written
    int line = 0;
};

struct State {
    FileOutput* out = nullptr;
    PlaceInFile place;
    MarkedPlace marked;
    OpenRoutine routine;
    std::vector<Block> blocks;    // every open If, loop and Select, innermost last
    std::vector<OpenWith> withs;  // the innermost last

    bool inType = false;
    std::string typeName;
    int typeLine = 0;
    bool isElement = false;
    ClassInfo* cls = nullptr;     // the class being emitted
    bool passesOverType = false;  // the open Type counts elsewhere, or is never closed (cls is null)
    std::unordered_set<const ClassInfo*> emitted;  // the classes of the file so far
    std::string access = "public";                 // of the members that follow
    std::string emittedAccess = "public";          // of the last label in the class body
    bool inExtern = false;
    int externLine = 0;
    int unclosedExtern = 0;  // line of the file's Extern without closer, or 0

    bool inPreCalc = false;
    int preCalcLine = 0;
    Tokens preCalcHeader;
    std::vector<TokenSpan> preCalcBody;
    std::vector<int> preCalcBodyLines;
    Tokens preCalcInline;  // stands there for a line of inline C++

    bool beforeFirstCase = false;    // debug builds: the hook of the first label would never run
    bool mistaken = false;           // something is wrong with the file,
    bool blocksAreDoubtful = false;  // which may open or close a block: what seems to be open may be closed
};

inline bool InRoutine(const State& state) { return state.routine.kind != RoutineKind::None; }
inline bool InFunction(const State& state) { return state.routine.kind == RoutineKind::Function; }
inline bool InMethod(const State& state) { return state.routine.kind == RoutineKind::Method; }

// Appends one line to the .cpp, prefixed by the statement's indentation; with -t and -c the first line
// of a statement carries its source and its comment.
void EmitLine(State& state, std::string_view text);
inline void EmitLine(State& state, const std::string& text) { EmitLine(state, std::string_view(text)); }
inline void EmitLine(State& state, const char* text) { EmitLine(state, std::string_view(text)); }
// Passages become slots of the open routine.
void EmitLine(State& state, const Code& code);
// The same with a slot of the open routine between each two of the texts; returns their indices.
std::vector<std::size_t> EmitSlottedLine(State& state, const std::vector<Code>& texts);
// The buffer for the line that the statement is about to emit, empty.
Code& FreshLine();
// A line of several parts: texts, expressions and values.
template <class First, class Second, class... More>
void EmitLine(State& state, const First& first, const Second& second, const More&... more) {
    Code& line = FreshLine();
    Put(line, first, second, more...);
    EmitLine(state, line);
}
// Opens a slot at the end of what is there.
std::size_t OpenSlot(State& state);

// A statement translator gets the statement's tokens (the keyword first) and emits lines, changes the
// state or ends the run.
using StatementHandler = void (*)(State& state, TokenSpan tokens);
