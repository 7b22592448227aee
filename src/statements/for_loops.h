// What the three forms of For (counted, EachIn, Each ... In) and EachSeq share.
#pragma once

#include "statements/state.h"

// The counted form (counted_for.cpp).
void TranslateCountedFor(State& state, TokenSpan tokens);

// At the end of a loop over a Sequence: when its body changes the Sequence, the iterators would not
// survive, so the loop becomes a walk that knows about the changes.
//     for(KVSeqWalk<int> __kvWalk_x(list); __kvWalk_x.HasItem(); __kvWalk_x.Next())
//     {
//      auto& x = __kvWalk_x.item;
void SettleWalk(State& state, Braces& loop);

// Declares a loop variable in the block just pushed and fills in its record.
Variable& DeclareLoopVariable(const std::string& name, const std::string& cppName, const ValueType& type);
