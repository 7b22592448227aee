// The operators of the language and what they are in C++.
#pragma once

#include <string>

#include "expressions/walk.h"

enum class OperatorKind : unsigned char { Add, Arithmetic, Divide, Remainder, Bits, Order, Equality, Logic };

struct BinaryOperator {
    const char* text;    // in C++
    const char* korvel;  // in messages
    Level level;
    OperatorKind kind;
};

enum class UnaryKind : unsigned char { Sign, Not, Complement };

struct UnaryOperator {
    const char* text;
    const char* korvel;
    UnaryKind kind;
};

// The binary operator at the walk's position and the number of its tokens; null when there is none.
// A lone "=" is an operator only when `comparing`.
const BinaryOperator* PeekBinary(const Walk& walk, bool comparing, std::size_t& length);

// An operation whose operands have been read, before it is checked.
struct Operation {
    const BinaryOperator& op;
    TokenSpan sign;
    const Expr &left, &right;
};

// An item of an array, with the variable or Field that the array is.
struct Indexing {
    const Variable& array;
    const Expr& firstIndex;
};

// A value that becomes one of a type: a variable's, a parameter's, a result.
struct Giving {
    const Expr& value;
    const ValueType& to;
};

// A statement that is a call.
struct CallStatement {
    TokenSpan tokens;
    const Expr& call;
};

// Are told of each of them; null while nobody looks.
struct Watches {
    void (*operation)(const Operation& operation) = nullptr;
    void (*indexing)(const Indexing& indexing) = nullptr;
    void (*giving)(const Giving& giving) = nullptr;
    void (*callStatement)(const CallStatement& statement) = nullptr;
};
extern Watches watches;

inline bool IsComparison(const BinaryOperator* op) {
    return op != nullptr && (op->kind == OperatorKind::Order || op->kind == OperatorKind::Equality);
}

// The operator before an operand; null when there is none.
const UnaryOperator* PeekUnary(const Walk& walk);
