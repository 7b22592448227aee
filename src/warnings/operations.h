// The operators of an expression with what stands on either side, by the precedence that the program has.
#pragma once

#include <functional>

#include "base/token_span.h"
#include "expressions/operators.h"

struct Term {
    TokenSpan tokens;
    const BinaryOperator* op = nullptr;  // at its top, without brackets around it
    bool isNot = false;                  // begins with a Not that belongs to all of it
};

struct Operation {
    const BinaryOperator* op = nullptr;
    TokenSpan sign;
    Term left, right;
};

using VisitOperation = std::function<void(const Operation&)>;

// Calls `visit` with every operation in the expressions of a statement, those in brackets, arguments and holes of
// Strings included.
void VisitOperations(TokenSpan statement, const VisitOperation& visit);

inline bool IsComparison(const BinaryOperator* op) {
    return op != nullptr && (op->kind == OperatorKind::Order || op->kind == OperatorKind::Equality);
}

// Position of the "=" outside of brackets that is no part of another operator; noToken without one.
std::size_t FindEquals(TokenSpan tokens, std::size_t from = 0);
