// What a piece of the program may read and change when it runs, itself and through all that it may call.
// Variables are told apart by their names alone, Fields without regard to the object, so two pieces may seem
// to touch the same where they do not; never the other way round.
#pragma once

#include <unordered_set>

#include "lexer/token_span.h"
#include "symbols/symbols.h"

struct Effects {
    std::unordered_set<const Word*> reads, changes;  // names of Globals, Consts and Fields, and marks
    bool anything = false;      // runs code that is not of the language and may do whatever it likes
    bool throughAlias = false;  // changes an array or a Sequence under the name of a parameter or Local
};

// What is no variable, but may be read and changed like one.
enum class EffectMark : unsigned char {
    Instances,  // the objects of the Types and their order
    World,      // input and output
    Timers,
    Userlibs,  // whatever lies behind the functions of userlibs
};
const Word* WordOf(EffectMark mark);

// What working out a value does. The first question about code that calls something reads all files once.
Effects EffectsOf(TokenSpan value);
// What happens when an Element, or an array of them, comes about without a value.
Effects EffectsOfMaking(const ClassInfo& element);
// What the handlers of all timers do.
Effects EffectsOfTimers();

void ResetEffects();
