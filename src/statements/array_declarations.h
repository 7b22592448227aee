// Texts of declared arrays: the vector, its size constants, and arrays taken over from calls.
#pragma once

#include <string>
#include <vector>

#include "expressions/expression.h"
#include "lexer/token_span.h"
#include "symbols/symbols.h"

enum class ArrayPlace : unsigned char {
    Local,  // a statement; Elements in plain slots that loops fill and free
    Inner,  // a Local whose block ends before the routine
    Global,
    Field,
};

// C++ spelling of the array's variable: arrays of Elements own their objects except in a Local's plain slots.
std::string ArrayCppName(const ValueType& type, ArrayPlace place);

// A declaration in its lines. `head` stands before the variable, `tail` behind it.
struct ArrayText {
    std::string head;         // constants of sizes that only the running program knows
    std::string variable;     // "std::vector<int> KVL_a(10);"
    std::string tail;         // "\n\t\t\t\tconst int KVL_a_size_0 = 10;" per dimension
    std::string declaration;  // extern lines, for Globals whose definition has to move
    std::string definition;   // what defines it then
};

// An array with sizes. A size that is no Int, negative or zero ends the run. A Local that fits into
// `frameRoom`, a number of bytes, lies in the frame and takes its size from there:
//     KVArray<int, 10> KVL_a = {};
ArrayText DeclareArray(const Variable& array, ArrayPlace place, std::size_t& frameRoom);

// An array that takes over what a call returned; `sizesKnown` when array.sizes are those of the result.
ArrayText TakeOverArray(const Variable& array, ArrayPlace place, const Expr& value, bool sizesKnown);

// The expression that takes over the array a call returns.
std::string TakenArray(const ValueType& type, ArrayPlace place, const std::string& call);

// Ends the run when a value taken from a call does not fit the declared array: its dimensions, or sizes
// that are known on both sides. `initialiser` is the call, `declared` the size texts as written.
void CheckArrayResult(const std::string& name, const ValueType& type,
                      const std::vector<std::string>& declared, TokenSpan initialiser, const Expr& value);

// The same for the sizes of calls whose Function was translated after them; once, at the end.
void CheckAwaitedResults();

// Whether the sizes are known to be the same.
bool SameSizes(const std::vector<std::string>& a, const std::vector<std::string>& b);

// The routine that a call's last name means, null when it is not known.
const Routine* CalledRoutine(TokenSpan call);

// Ends the run with the message for one array given to another.
[[noreturn]] void FailArrayAssignment();
