// The order in which Globals and Consts take their values, and what each of them reads and changes on the way.
#pragma once

#include <unordered_set>
#include <vector>

#include "analysis/effect_set.h"
#include "prelude/order.h"

// What working out an initial value does.
struct ValueEffects {
    std::unordered_set<Thing> reads, changes;
    bool anything = false;
};

// What of a Global takes place where an entry stands.
enum class EntryPart : unsigned char {
    Whole,  // the definition with its value
    Empty,  // the definition without one: what comes before its value may use it
    Value,  // the assignment of the value to what is there already
};

struct GlobalEntry {
    GlobalDefinition* global = nullptr;
    FileOutput* file = nullptr;
    const Variable* variable = nullptr;  // what look-ups find under its name
    std::size_t position = 0;            // among the definitions as the headers have them
    std::vector<const Word*> mentioned;  // the names in its initial value and its sizes, but for members
    ValueEffects effects;                // of its initial value
    bool changedBefore = false;          // what comes before it may give it another value
    EntryPart part = EntryPart::Whole;

    const Word* Name() const { return &WordOf(global->name); }
    bool IsConstant() const { return global->constant || global->isPreCalc; }
};

// All Globals and Consts of the program in source order, Includes where they stand. Two kinds come earlier: what
// an initial value names, and what it may use on the way through routines when that has no value that could be
// told from the default, or is a Const. What is changed before its place takes its value there (once more), in
// an entry of its own; a String or a Sequence whose value runs code is there without one before.
std::vector<GlobalEntry> GlobalsInOrder(Program& program);
