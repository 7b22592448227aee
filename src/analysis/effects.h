// Whether the order of two pieces of an expression can be seen. C++ works out operands, arguments and indices in
// an order of its own, the language from left to right; texts stay plain where nobody could tell.
#pragma once

#include <vector>

#include "analysis/effect_set.h"
#include "base/token_span.h"
#include "symbols/symbols.h"

// What the tokens of an expression of the open routine read and change, with all that they may call. The first
// question reads all files of the program once. Before all declarations are known it is nothing.
EffectSet EffectsOf(TokenSpan tokens);
// The same for a value that may assign on its way: a[First()] = b = 1.
EffectSet EffectsOfAssigned(TokenSpan tokens);
// The same for a variable, Field or item that is only looked up: its value is not read.
EffectSet EffectsOfPlace(TokenSpan tokens);
// The same when it is given a value.
EffectSet EffectsOfTarget(TokenSpan tokens);

// What the routine does when it is called, whatever it is handed; timers count only where it arms them.
EffectSet EffectsOfRoutine(const Routine& routine);
// What happens when an Element comes about without a value, and what the handlers of all timers do.
EffectSet EffectsOfMaking(const ClassInfo& element);
EffectSet EffectsOfTimers();

// Whether it can be seen which of the pieces was worked out first.
bool OrderCanBeSeen(const std::vector<EffectSet>& pieces);
bool OrderCanBeSeen(const std::vector<TokenSpan>& pieces);
// Whether working out the one may change what the other reads.
bool MayChange(TokenSpan changing, TokenSpan reading);
// Whether nobody could tell that it was worked out more than once. Who comes back to the same place by its calls could,
// by the time that it takes: twice as often each time.
bool MayRepeat(TokenSpan tokens);
