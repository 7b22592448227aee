// Reads a type annotation from tokens; every declaration form uses it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/token_span.h"
#include "symbols/value_type.h"

struct TypeNote {
    ValueType type;                  // dimensions counted
    std::string name;                // as written, brackets aside: "Int", "void*", "Sequence Of Int"
    std::vector<std::string> sizes;  // per dimension, tokens joined by blanks; empty for "[]"
    std::size_t end = 0;             // position behind the annotation
};

// Reads `Type`, `Type[size]...` or `Sequence Of Type` from token `at` on, the one behind the ":". An
// unknown type, a Sequence of something else than basic types and Elements, and a missing "]" end the run.
TypeNote ReadType(TokenSpan tokens, std::size_t at);

// The same for the result of a routine, where "Void" may be written.
TypeNote ReadResultType(TokenSpan tokens, std::size_t at);

// Reads the "[size]" groups from `at` on, adding to sizes and dimensions; note.end moves behind them.
void ReadSizes(TokenSpan tokens, std::size_t at, TypeNote& note);

// For those who want of an AnyObject what objects of a known Type have; empty for other types.
Hint HintAtAnyObject(const ValueType& type);
