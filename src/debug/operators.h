// What the operators of the language do with values that the debugger has been told.
#pragma once

#include <string>

#include "debug/session.h"

namespace debug {

// What is wrong with an expression, in words.
struct Refusal {
    std::string text;
};

// "; did you mean load?", of the names that there are; empty where none is like it.
std::string DidYouMean(const std::string& name, const std::vector<std::string>& known);

enum class Level { Or, And, BitOr, BitXor, BitAnd, Equality, Relation, Shift, Sum, Product, Sign };

struct Operator {
    const char* word;  // in small letters
    Level level;       // those with a higher one are worked out first
    Value (*apply)(const Value& left, const Value& right);
};

// The one that the text has at this place. Null where it has none.
const Operator* FindOperator(const std::string& text, std::size_t at);

// The same in front of a value; the left side means nothing to it.
const Operator* FindSign(const std::string& text, std::size_t at);

Value Plain(char kind, const std::string& text);
Value Truth(bool isTrue);
Value WholeNumber(long long number);
Value Double(double number);

bool IsNumber(const Value& value);
bool IsTrue(const Value& value);
long long WholeOf(const Value& value);

}  // namespace debug
