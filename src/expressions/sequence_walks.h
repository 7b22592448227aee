// Loops over Sequences that are open where an expression or statement stands. Whoever changes a Sequence
// tells its loops: they turn into walks by KVSeqWalk (Support::SequenceWalk) when they end.
#pragma once

#include <string>

// Opens the walk of a loop over the Sequence of that C++ text; the walk is named after the loop variable.
void OpenSequenceWalk(const std::string& sequence, const std::string& variable);
// Closes the innermost walk; true when the loop has to run by KVSeqWalk.
bool CloseSequenceWalk();

std::string SequenceWalkName(const std::string& variable);

// The value wrapped in a call of `member` for each open walk over the Sequence, as in
// "__kvWalk_KVL_x.Removing(KVL_i)". Without walks it is the value itself.
std::string TellWalks(const std::string& sequence, const char* member, const std::string& value);
// Calls without an argument, each followed by `separator`: "__kvWalk_KVL_x.Leave(), ".
std::string WalkCalls(const std::string& sequence, const char* member, const char* separator);
// The walks are to run by KVSeqWalk, though nothing has to be told.
void NoteSequenceChange(const std::string& sequence);
