// C++ works out operands, arguments and indices in an order of its own, the language from left to right. What has
// to be done where that could be seen (analysis/effects.h) is decided here, once the tree of an expression is there.
//
// Arguments and the like get names in order (in_order.h), Strings that are joined stand between braces. g++ takes the
// operands of arithmetic in an order of its own, too: it puts a variable behind a call, makes B - A of
// -A + B and of -(A - B), and drops what it finds on both sides. There it must not look into the left operand:
//     __kvNow(KVL_g) + KVL_Next (  )
//     - __kvNow(( KVL_First (  ) - KVL_Second (  ) ))
// It leaves calls of the program's routines alone, sums, differences and products of them too unless they are
// negated, and reads items and members in time when no more than such a call is behind them.
#pragma once

#include "expressions/tree.h"

// Settles what of the tree is `ordered`, `named` or `hidden`, and which parts of sums stand between braces.
void KeepOrder(Expr& root);

// With so many parts all of a sum stand between braces: a C++ compiler needs minutes for a thousand "+".
constexpr std::size_t manyTexts = 200;

// Whether it can be seen in which order the two, or an expression and those behind it, are worked out.
bool OrderMatters(const Expr& first, const Expr& second);
bool OrderMatters(const Expr* parts);
// The same where the place is only looked up: an array before its indices, a target before its value.
bool IsLookUpSeen(const Expr& place, const Expr* others);
// Whether the text of the operand may be evaluated more than once.
bool MayRepeat(const Expr& operand);
