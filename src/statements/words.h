// Small readings of a statement's tokens that all statement families share.
#pragma once

#include <string>

#include "base/token_span.h"
#include "expressions/expression.h"

// Ends the run when the statement has a token at index `from`.
void RefuseMore(TokenSpan tokens, std::size_t from);

// Appends the C++ text of a condition, or returns it as a text of its own; ends the run when there is none or it has a type that is neither true nor false.
const Expr& WriteCondition(Code& out, TokenSpan tokens, const std::string& keyword);
Code ConditionText(TokenSpan tokens, const std::string& keyword);

// Ends the run with the message for a value of type `from` that a variable of type `to` cannot take; it is about the
// tokens of the value.
[[noreturn]] void FailMismatch(const ValueType& from, const ValueType& to, const std::string& variable,
                               TokenSpan value = {});

// The text of an expression that needs parentheses when its top operator binds weaker than `weakest`.
void WriteGuarded(Code& out, const Expr& expr, Level weakest);
Code GuardedText(const Expr& expr, Level weakest);

// Text of an array or Sequence that a range-for can walk: an array fresh from a call is taken over.
Code WalkableText(const Expr& expr);
