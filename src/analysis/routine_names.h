// The names of a routine's own, as its statements are met one after the other.
#pragma once

#include <unordered_map>
#include <vector>

#include "base/token_span.h"
#include "symbols/symbols.h"

// What a name of a routine's own stands for.
enum class OwnName : unsigned char {
    None,     // it is no such name
    Value,    // a single value or an object
    Element,  // a record of the routine's own
    Items,    // an array or Sequence of the routine's own
    Passed,   // one that belongs to somebody else
    Item,     // refers to an item of a Sequence
};

struct RoutineNames {
    std::unordered_map<const Word*, OwnName> own;
    // Variables of EachIn loops, which may be the very items, and the names of what is walked over.
    std::unordered_map<const Word*, const Word*> walkers;
    std::vector<const Word*> withs;   // the last names of the objects of the open With blocks
    const ClassInfo* self = nullptr;  // the Element whose Method it is
};

OwnName KindOf(const ValueType& type);
// Position of the last name outside of brackets; the number of tokens without one.
std::size_t LastName(TokenSpan tokens);

// Null when nothing is known of the routine.
RoutineNames NamesOf(const Routine* routine);
// What stands for what behind the statement. `outermost`: no block of the routine is open there; a Local of an
// inner block gives its name back.
void AddNames(TokenSpan statement, bool outermost, RoutineNames& names);
// What is changed when the name alone is assigned to.
const Word& Meant(const Word& name, const RoutineNames& names);
