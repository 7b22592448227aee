// Which blocks are open, in one stack over all kinds, and the Selects among them. The stacks of start
// lines in State serve the report at the end of the file; this one tells what a closer really closes.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "symbols/value_type.h"

struct Piece;
struct State;

enum class BlockKind : unsigned char { If, Loop, Repeat, Select };

// The header of a loop over a Sequence, to be rewritten when the body turns out to change the Sequence.
struct SequenceWalk {
    std::string sequence;    // C++ text; empty for other loops
    std::string variable;    // C++ name
    std::string type;        // of the variable, as "auto&"
    std::string item;        // C++ type of the Sequence's items
    std::string behind;      // what has to stand behind the closing brace of any loop
    Piece* piece = nullptr;  // where the header stands
    std::size_t forAt = 0;   // of the text "for(...)" in it
    std::size_t forSize = 0;
    std::size_t bodyAt = 0;  // behind the line "{"
};

struct OpenBlock {
    BlockKind kind = BlockKind::If;
    int line = 0;
    int routineLine = 0;     // of the Function or Method that the block stands in
    std::string variable;    // loop variable, as written
    bool elseSeen = false;   // If
    bool continued = false;  // Repeat: a Continue of this loop was met
    SequenceWalk walk;       // a loop over a Sequence
};

struct OpenSelect {
    ValueType subject;
    std::string subjectText;
    bool byIndex = false;    // String and Double: the switch runs over the index of the matching label
    Piece* piece = nullptr;  // byIndex: where the switch line stands, completed when all labels are known
    std::size_t switchAt = 0;
    std::string labelTexts;  // byIndex: the labels so far, joined by ", "
    int labelCount = 0;
    std::unordered_set<std::string> labels;  // values so far, for duplicates
    bool labelSeen = false;                  // a Case or Default
    bool defaultSeen = false;
    bool braces = false;              // the current case declares a Local and is in braces
    Piece* lastLabelPiece = nullptr;  // end of the last label's line, for labels with nothing behind them
    std::size_t lastLabelEnd = 0;
};

// Puts a block that starts at the current line on the stack.
OpenBlock& OpenNewBlock(State& state, BlockKind kind);

// Takes the innermost block of the kind off the stack. None open ends the run. A block that closes
// across others, or in another routine, is remembered and refused by CheckCrossedBlocks.
OpenBlock CloseBlock(State& state, BlockKind kind, const std::string& closer);

// At the end of a file, after the checks for unclosed blocks: ends the run when a closer crossed a block.
void CheckCrossedBlocks(const State& state);

// The word that closes a loop of the kind: "For", "While", "EachSeq".
const char* LoopCloser(const std::string& kind);

bool InnermostBlockIs(const State& state, BlockKind kind);
