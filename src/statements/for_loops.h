// Headers of For in its three forms (counted, EachIn, Each ... In) and of EachSeq.
#pragma once

#include "statements/state.h"

void TranslateFor(State& state, TokenSpan tokens);
void TranslateEachSeq(State& state, TokenSpan tokens);

// The counted form (counted_for.cpp).
void TranslateCountedFor(State& state, TokenSpan tokens);

// At the end of a loop over a Sequence that its body changes: turns the loop into a walk by index, because
// the iterators would not survive.
//     for(size_t i = 0, i_end = list.Length(); i < i_end && i < (size_t)list.Length(); ++i)
//     {
//      auto x = list._items[i];
void RewriteWalk(State& state, const SequenceWalk& walk);

// Notes that a statement changes the Sequence, for the loops over it that are open.
void NoteSequenceChange(State& state, const std::string& sequence);

// Notes the opened loop: depth, start line, kind word for the report at the end of the file.
OpenBlock& OpenLoop(State& state, const std::string& kind);

// Declares a loop variable in the block just pushed and fills in its record.
Variable& DeclareLoopVariable(const std::string& name, const ValueType& type);
