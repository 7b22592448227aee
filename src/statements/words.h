// Small readings of a statement's tokens that all statement families share.
#pragma once

#include <string>

#include "expressions/expression.h"
#include "lexer/token_span.h"

// Ends the run when the statement has a token at index `from`.
void RefuseMore(TokenSpan tokens, std::size_t from);

// C++ text of a condition; ends the run when there is none or it has a type that is neither true nor false.
std::string ConditionText(TokenSpan tokens, const std::string& keyword);

// Ends the run with the message for a value of type `from` that a variable of type `to` cannot take; it is about the
// tokens of the value.
[[noreturn]] void FailMismatch(const ValueType& from, const ValueType& to, const std::string& variable,
                               TokenSpan value = {});

// Text of an expression that needs parentheses when its top operator binds weaker than `weakest`.
std::string GuardedText(const Expr& expr, Level weakest);

// Text of an array or Sequence that a range-for can walk: an array fresh from a call is taken over.
std::string WalkableText(const Expr& expr);
