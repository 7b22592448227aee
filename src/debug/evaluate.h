// Expressions over what a program that stands has: variables, members, items, arithmetic, comparisons. Nothing of the
// program is called.
#pragma once

#include <string>

#include "debug/operators.h"

namespace debug {

// In the frame with this number, the innermost being 0. Throws a Refusal.
Value Evaluate(Session& session, std::size_t frame, const std::string& text);

}  // namespace debug
