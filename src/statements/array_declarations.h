// Texts of declared arrays: the vector, its size constants, and arrays taken over from calls.
#pragma once

#include <string>
#include <vector>

#include "base/token_span.h"
#include "expressions/expression.h"
#include "symbols/symbols.h"

enum class ArrayPlace : unsigned char {
    Local,  // a statement; Elements in plain slots that loops fill and free
    Inner,  // a Local whose block ends before the routine
    Global,
    Field,
};

// C++ spelling of the array's variable: arrays of Elements own their objects except in a Local's plain slots.
std::string ArrayCppName(const ValueType& type, ArrayPlace place, bool handsOnBools);

// A declaration in its lines. `head` stands before the variable, `tail` behind it.
struct ArrayText {
    Code head;                // constants of sizes that only the running program knows
    Code variable;            // "std::vector<int> KVL_a(10);"
    Code tail;                // "\n\t\t\t\tconst int KVL_a_size_0 = 10;" per dimension
    std::string declaration;  // extern lines, for Globals whose definition has to move
    std::string definition;   // what defines it then
};

// An array with sizes. A size that is no Int, negative or zero ends the run. A Local that fits into
// `frameRoom`, a number of bytes, lies in the frame and takes its size from there:
//     KVArray<int, 10> KVL_a = {};
ArrayText DeclareArray(const Variable& array, ArrayPlace place, std::size_t& frameRoom);

// What is known about the array that a call returns.
struct TakenSizes {
    bool known = false;  // its sizes are the declared ones
    std::string from;    // name of what was called
};

// An array that takes over what a call returned. Unless its sizes are known, the program compares them with
// those that are declared, if any.
ArrayText TakeOverArray(const Variable& array, ArrayPlace place, const Expr& value, const TakenSizes& taken);

// The expression that takes over the array a call returns.
Code TakenArray(const Expr& value, ArrayPlace place);

// Ends the run with the message for one array, or what is none, given to another.
[[noreturn]] void FailArrayAssignment(const ValueType& to, const Expr& value);
