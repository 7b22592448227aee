// Expressions over what a program that stands has: variables, members, items, arithmetic, comparisons. Nothing of the
// program is called.
#pragma once

#include <string>

#include "debug/session.h"

namespace debug {

// What is wrong with an expression, in words.
struct Refusal {
    std::string text;
};

// In the frame with this number, the innermost being 0. Throws a Refusal.
Value Evaluate(Session& session, std::size_t frame, const std::string& text);

bool IsNumber(const Value& value);
bool IsTrue(const Value& value);

}  // namespace debug
