// Which blocks are open, and what a closer closes: by its word the innermost block of its kind, in C++ the
// innermost braces, whose they ever are. The two are the same unless closers cross:
//     While a        while (...) {
//         If b           if (...) {
//     Wend               }
//         EndIf      }
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "base/report.h"
#include "expressions/code.h"
#include "symbols/value_type.h"

struct State;

// Inline: a brace that inline C++ has opened.
enum class BlockKind : unsigned char { If, Loop, Repeat, Select, Inline };

// A loop over a Sequence, of which its end tells whether the body changes the Sequence.
struct SequenceWalk {
    std::string variable;  // C++ name
    std::string type;      // of the variable, as "auto&"
    std::string item;      // C++ type of the Sequence's items
    // Around the Sequence in "for(...)", and behind the line "{".
    std::size_t headSlot = 0, tailSlot = 0, bodySlot = 0;
    // Before and behind the loop, where it turns out that its body lets nothing come or go; the first slot before it.
    Code before, behind;
    std::size_t beforeSlot = 0;
};

struct OpenSelect {
    ValueType subject;
    bool byIndex = false;        // String and Double: the switch runs over the index of the matching label
    std::size_t labelsSlot = 0;  // byIndex: in the switch line
    std::string labelTexts;      // byIndex: the labels so far, joined by ", "
    int labelCount = 0;
    std::unordered_set<std::string> labels;  // values so far, for duplicates
    bool labelSeen = false;                  // a Case or Default
    bool warned = false;                     // of a statement before the first label
    bool declares = false;       // the current case declares Locals; in braces when another one follows
    std::size_t localsSlot = 0;  // for the brace
    std::string localsIndent;
};

// What the closing word of a block is looked up by.
struct Opener {
    BlockKind kind = BlockKind::If;
    const char* word = "";  // of a loop: "For", "While" or "EachSeq"
    int line = 0;
    int routineLine = 0;   // of the Function or Method that the block stands in
    std::string variable;  // loop variable, as written
};

// The braces of a block.
struct Braces {
    BlockKind kind = BlockKind::If;
    int line = 0;
    std::string variable;    // loop variable, as written
    bool elseSeen = false;   // If: an Else; Select: a Default
    bool continued = false;  // Repeat: a Continue of this loop was met
    bool endless = false;    // While: the condition is always true
    // Where a run of the program may get, see OpenRoutine::reachable.
    bool entered = true;      // to the block
    bool broken = false;      // out of it by Exit
    bool branchLeft = false;  // to the end of a branch of the If before the open one
    Code behind;              // what has to stand behind the closing one
    std::unique_ptr<SequenceWalk> walk;
    std::unique_ptr<OpenSelect> select;
};

// A block whose closing word, and one whose closing brace, has not been met: the same one unless closers cross.
struct Block {
    Opener opener;
    Braces braces;
};

// Opens a block that starts at the current line; a loop says by which word, and its variable as written.
Braces& OpenNewBlock(State& state, BlockKind kind, const char* word = "", const std::string& variable = "");

// Takes the innermost block of the kind in the open routine, or else a brace of inline C++, and the innermost braces
// off the stack. A closer that closes nothing ends the run; while other blocks are open it gives no result, there
// is nothing to emit, and CheckClosers refuses it unless one of those turns out to be the culprit. So it does with
// braces that the closer cannot end.
std::optional<Block> CloseBlock(State& state, BlockKind kind, const std::string& closer);

// A further branch of the If, or a label of the Select, in the innermost braces begins.
void BeginBranch(State& state);
void BeginLabel(State& state);
// The statement has left the innermost braces that "break" leaves, or goes on with the innermost loop.
void NoteBreak(State& state);
void NoteContinue(State& state);
// Inline C++ may jump anywhere.
void NoteInlineJumps(State& state);

// Leaves the scope of closed braces.
void PopScopeOf(const Braces& braces);
// Ends what their block has begun and emits "}".
void EmitClosing(State& state, Braces& braces);

// Inline C++ of the open routine has opened so many braces more than it has closed, or closed more.
void NoteInlineBraces(State& state, int opened);
// At the end of a routine: what inline C++ has left open is its own affair; what else is open waits for the report,
// and has nothing to do with slots any more, which end with the routine.
void LeaveBlocks(State& state);

// What a word has to do with it that has no If to close or divide: the one before in the routine that ended with its line.
Elsewhere ClosedIf(const State& state);
inline const Hint wayToOpenIf = {
    "An If with something behind Then ends with its line; otherwise that stands in the next line"};

// At the end of a file, after the checks for unclosed blocks: ends the run when a closer could not be let through.
void CheckClosers(const State& state);

// The word that closes a block.
const char* CloserOf(const Opener& opener);

// Whether the innermost braces are of the kind, and whether any are.
bool InnermostIs(const State& state, BlockKind kind);
bool IsOpen(const State& state, BlockKind kind);
// Whether braces are open around the statement that "break", or "continue", can leave.
bool CanBreak(const State& state);
bool CanContinue(const State& state);
