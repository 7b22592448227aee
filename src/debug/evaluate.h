// Expressions over what a program that stands has: variables, members, items, arithmetic, comparisons. Nothing of the
// program is called.
#pragma once

#include <string>

#include "debug/operators.h"

namespace debug {

// In the frame with this number, the innermost being 0. Throws a Refusal.
Value Evaluate(Session& session, std::size_t frame, const std::string& text);

// A text as an expression has it, in quotes.
std::string Written(const std::string& text);

// Reads it for a stop in that line, and works nothing out. Throws a Refusal of what can never be right there.
void Check(const std::string& text);  // in any line
void Check(const Session& session, const std::string& file, int line, const std::string& text);

}  // namespace debug
