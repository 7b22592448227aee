// The statements that change a Sequence: SeqAdd, SeqInsert, SeqSet, SeqDelete, SeqDeleteAt, SeqClear,
// SeqAddFirst, SeqReverse, SeqSort, SeqSwap, SeqFromArray.
#pragma once

#include "statements/state.h"

// Both forms are taken: SeqAdd list, 1 and SeqAdd(list, 1).
void TranslateSeqStatement(State& state, TokenSpan tokens);
