// What a piece of the program reads and changes, as far as another piece of it could tell.
#pragma once

#include <cstdint>
#include <vector>

#include "base/token.h"

// Something that two pieces of a program may both be about: the screen, the objects of all Types, or whatever
// bears a name. Locals, Fields of all classes and Globals of one name count as one thing.
using Thing = std::uint32_t;

constexpr Thing screen = 0;        // Print, Input, the end of the program
constexpr Thing keyboard = 1;      // Input, GetKey
constexpr Thing instances = 2;     // the lists of all objects
constexpr Thing timers = 3;        // AutoCall, StopCall
constexpr Thing foreignState = 4;  // what functions of C and of userlibs keep
constexpr Thing userlibs = 5;      // what lies behind their functions
constexpr Thing firstNamed = 8;

inline Thing ThingOf(const Word& name) { return firstNamed + name.id; }

struct EffectSet {
    bool anything = false;  // nothing is known of it
    // Items of arrays and Sequences: through a name of their own, and through parameters, which may stand for any.
    bool readsItems = false, changesItems = false;
    bool readsPassed = false, changesPassed = false;
    std::vector<Thing> reads, changes;
    // Names of the routine's own, which nobody gets at but who is handed them.
    std::vector<Thing> ownReads, ownChanges;

    void Read(Thing thing) { reads.push_back(thing); }
    void Change(Thing thing) { changes.push_back(thing); }
    // Sorts and drops doubles; a set that grew too long becomes `anything`.
    void Settle();
    // Adds what the other one holds.
    void Add(const EffectSet& other);
};

// Whether two settled lists have something in common.
bool Meet(const std::vector<Thing>& a, const std::vector<Thing>& b);
bool ChangesNothing(const EffectSet& set);
// Whether `change` may change what `read` reads; both settled.
bool MayChange(const EffectSet& change, const EffectSet& read);
// Whether it can be seen which of them came first; both settled.
bool Conflict(const EffectSet& a, const EffectSet& b);
