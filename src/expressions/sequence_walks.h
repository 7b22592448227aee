// Loops over Sequences that are open where an expression or statement stands. Whoever may change a Sequence
// tells its loops: they turn into walks by KVSeqWalk (Support::SequenceWalk) when they end. Whether a loop
// will is not known while its body is translated, so what only walks need is a passage: a sign in the text of the
// expression, and a slot in the output, which keeps its text or loses it when the loop ends.
#pragma once

#include <string>
#include <string_view>
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
};
ClosedWalk CloseSequenceWalk();

// What the sign at the beginning of the text stands for; of walk 0 when it only looks like one.
struct Passage {
    std::size_t size = 1;  // of the sign
    int walk = 0;
    std::string text;
};
constexpr char passageSign = '\0';
Passage PassageIn(std::string_view text);

std::string SequenceWalkName(const std::string& variable);

// The value wrapped in a call of `member` for each open walk over the Sequence, as in
// "__kvWalk_KVL_x.Removing(KVL_i)". Without walks it is the value itself.
std::string TellWalks(const Expr& sequence, const char* member, const std::string& value);
// Calls without an argument, each followed by `separator`: "__kvWalk_KVL_x.Leave(), ".
std::string WalkCalls(const Expr& sequence, const char* member, const char* separator);
// The walks over the Sequence are to run by KVSeqWalk, though nothing has to be told.
void NoteSequenceChange(const Expr& sequence);

// Text that changes a Sequence, or only reads it: walks over what may be the same Sequence under another name
// are away while it runs: (__kvWalk_KVL_x.Away(), text)
std::string WhileAway(const Expr& sequence, bool changes, std::string text);
// Text that assigns an Element over another one, and with it what may be such a Sequence.
std::string ReplacedWhileAway(const ClassInfo& element, std::string text);
// The same for a call of one of the program's routines, which may do anything to some Sequences.
std::string CallWhileAway(const Routine& routine, const std::vector<Expr>& arguments, std::string text);
// Text that only puts the items of a Sequence into another order, which every loop can go through. Walks that
// run by KVSeqWalk anyway go on by position: __kvWalk_KVL_x.Leave(); text
std::string WhileReordered(const Expr& sequence, std::string text);
// An object of the class is made or, with null, some object is removed: user code that may change Sequences.
void NoteConstruction(const ClassInfo& cls);
void NoteDestruction();
// A line of inline C++, which may do anything to the Sequences that it names.
void NoteInlineCppInLoops(const std::string& line);

// What stands before and behind an inner loop over a Sequence that outer ones may be walking.
std::string BeforeInnerLoop(const Expr& sequence);
std::string BehindInnerLoop(const Expr& sequence);
