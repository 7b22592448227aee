// g++ takes the operands of arithmetic in an order of its own: it puts a variable behind a call, makes B - A of
// -A + B and of -(A - B), and drops what it finds on both sides. Where the order can be seen it must not look into
// the left operand:
//     __kvNow(KVL_g) + KVL_Next (  )
//     - __kvNow(( KVL_First (  ) - KVL_Second (  ) ))
// It leaves calls of the program's routines alone, sums, differences and products of them too unless they are
// negated, and reads items and members in time when no more than such a call is behind them.
#pragma once

#include <vector>

#include "analysis/effect_set.h"
#include "expressions/operators.h"

// What an expression of numbers that runs code was made of.
struct NumberPieces {
    std::vector<TokenSpan> spans;
    EffectSet does;           // settled
    std::size_t covered = 0;  // so many spans are in it
};

// Makes g++ work out the left operand before the right one, and leave the order inside of either.
void KeepOrder(Expr& left, const BinaryOperator& op, Expr& right);
// The same for what stands behind a sign.
void KeepOrder(const UnaryOperator& op, Expr& operand);
// Whether g++ may find that the value of what they make is known, and works out the calls in it before all else:
// KVL_First (  ) + KVL_Second (  ) * 0
bool MayLeap(const Expr& left, const BinaryOperator& op, const Expr& right);
// Tells the result of arithmetic what it was made of.
void NoteOperands(Expr& result, const Expr& left, const BinaryOperator& op, const Expr& right);
