// Loops over Sequences that are open where an expression or statement stands. Whoever may change a Sequence
// tells its loops: they turn into walks by KVSeqWalk (Support::SequenceWalk) when they end. Whether a loop
// will is not known while its body is translated, so what only walks need is a passage beside the text (code.h),
// which becomes a slot in the output and keeps its text or loses it when the loop ends.
#pragma once

#include <string>
#include <vector>

#include "expressions/expression.h"

// Forgets the open walks, when a mistake has interrupted their loops.
void ResetSequenceWalks();
// How many loops are open, and forgetting those that were opened since there were so many.
std::size_t SequenceWalkCount();
void DropSequenceWalks(std::size_t count);

// Opens the walk of a loop over a Sequence variable or Field; it is named after the loop variable's C++ name.
void OpenSequenceWalk(const Expr& sequence, const std::string& variable);
// Closes the innermost walk.
struct ClosedWalk {
    int number = -1;
    bool changed = false;  // the loop has to run by KVSeqWalk, and the walk's passages stay
    std::string name;
};
ClosedWalk CloseSequenceWalk();

// The value wrapped in a call for each open walk over the Sequence, as in "__kvWalk_KVL_x.Storing(KVL_i)", which
// stores the walk's item behind it. Without walks it is the value itself.
Code StoreWalks(const Expr& sequence, Code value);
// Calls without an argument, each followed by `separator`: "__kvWalk_KVL_x.Leave(), ".
Code WalkCalls(const Expr& sequence, const char* member, const char* separator);
// The walks over the Sequence are to run by KVSeqWalk, though nothing has to be told.
void NoteSequenceChange(const Expr& sequence);

// Walks that are away while some text runs, which may mean their Sequences under another name:
//     (__kvWalk_KVL_x.Away(), text)
using AwayWalks = std::vector<const struct OpenWalk*>;
// From text that changes a Sequence, or only reads it.
AwayWalks AwayFrom(const Expr& sequence, bool changes);
// From text that assigns an Element over another one, and with it what may be such a Sequence.
AwayWalks AwayFromReplaced(const ClassInfo& element);
// From a call of one of the program's routines, which may do anything to some Sequences.
AwayWalks AwayFromCall(const Routine& routine, Expr* arguments);
// What stands before and behind the text, and all of it.
void BeginAway(Code& out, const AwayWalks& away);
void EndAway(Code& out, const AwayWalks& away);
Code Away(const AwayWalks& away, const Code& code);

// Text that only puts the items of a Sequence into another order, which every loop can go through. Walks that
// run by KVSeqWalk anyway go on by position: __kvWalk_KVL_x.Leave(); text
Code WhileReordered(const Expr& sequence, const Code& code);
// An object of the class is made or, with null, some object is removed: user code that may change Sequences.
void NoteConstruction(const ClassInfo& cls);
void NoteDestruction();
// A line of inline C++, which may do anything to the Sequences that it names.
void NoteInlineCppInLoops(const std::string& line);

// What stands before and behind an inner loop over a Sequence that outer ones may be walking.
Code BeforeInnerLoop(const Expr& sequence);
Code BehindInnerLoop(const Expr& sequence);
