#include "expressions/operand_order.h"

#include "analysis/effects.h"
#include "prelude/support.h"

namespace {

// A variable with no more than signs and numbers beside it.
bool IsBareVariable(TokenSpan tokens) {
    std::size_t names = 0;
    for (const std::string& token : tokens) {
        if (Is(token, "[")) return false;
        names += IsIdentifier(token) ? 1 : 0;
    }
    return names == 1;
}

// g++ knows some functions of C as well as its own operators.
bool IsOpaque(const Expr& expr) {
    const bool own = expr.routine != nullptr && !expr.routine->isExtern && !expr.routine->isUserlib;
    return own || expr.hidden;
}

bool IsUpright(const Expr& expr) { return IsOpaque(expr) || expr.upright; }

// An item, a member behind a pointer, or what a reference stands for.
bool IsPlace(const Expr& expr) {
    if (expr.variable != nullptr && expr.variable->isItem) return true;
    return expr.assignable && !IsBareVariable(expr.source);
}

bool Compares(const BinaryOperator& op) {
    return op.kind == OperatorKind::Order || op.kind == OperatorKind::Equality;
}

// Checks of undefined behaviour look at the right operand of these first.
bool IsChecked(const BinaryOperator& op) {
    return op.kind == OperatorKind::Divide || op.kind == OperatorKind::Remainder || op.level == Level::Shift;
}

// What may be a number known beforehand.
bool IsFixed(const Expr& expr) { return !expr.effects && !expr.assignable; }

bool StaysInPlace(const Expr& left, const BinaryOperator& op, const Expr& right) {
    return IsUpright(left) || (IsPlace(left) && IsOpaque(right) && !IsChecked(op));
}

void Hide(Expr& expr) {
    RequireSupport(Support::ReadNow);
    // An item of an array of Bools is a reference of its own kind.
    expr.text = (expr.type.Is(Base::Bool) ? "__kvNow<bool>(" : "__kvNow(") + expr.text + ")";
    expr.level = Level::Primary;
    expr.hidden = true;
    expr.turns = expr.leaps = false;
    expr.variable = nullptr;
}

void HideSum(Expr& expr) {
    if (expr.turns && OrderCanBeSeen(expr.pieces->spans)) Hide(expr);
}

std::shared_ptr<NumberPieces> PiecesOf(const Expr& expr) {
    if (expr.pieces != nullptr) return expr.pieces;
    auto pieces = std::make_shared<NumberPieces>();
    pieces->spans.push_back(expr.source);
    return pieces;
}

bool IsSeen(Expr& left, const Expr& right) {
    if (!left.effects && !right.effects) return false;
    left.pieces = PiecesOf(left);
    NumberPieces& pieces = *left.pieces;
    for (; pieces.covered < pieces.spans.size(); ++pieces.covered)
        pieces.does.Add(EffectsOf(pieces.spans[pieces.covered]));
    pieces.does.Settle();
    return Conflict(pieces.does, EffectsOf(right.source));
}

}  // namespace

void KeepOrder(Expr& left, const BinaryOperator& op, Expr& right) {
    if (op.level != Level::Sum && !Compares(op)) HideSum(left);
    if (op.kind != OperatorKind::Add && !Compares(op)) HideSum(right);
    const bool leaps = right.leaps && right.effects;
    const bool stays = StaysInPlace(left, op, right);
    if ((stays && !leaps) || !IsSeen(left, right)) return;
    if (!stays) Hide(left);
    if (leaps) Hide(right);
}

void KeepOrder(const UnaryOperator& op, Expr& operand) {
    if (op.kind != UnaryKind::Not) HideSum(operand);
}

bool MayLeap(const Expr& left, const BinaryOperator& op, const Expr& right) {
    return left.leaps || right.leaps || (op.level != Level::Sum && (IsFixed(left) || IsFixed(right)));
}

void NoteOperands(Expr& result, const Expr& left, const BinaryOperator& op, const Expr& right) {
    if (!left.effects && !right.effects) return;
    result.pieces = PiecesOf(left);
    std::vector<TokenSpan>& spans = result.pieces->spans;
    if (right.turns)
        spans.insert(spans.end(), right.pieces->spans.begin(), right.pieces->spans.end());
    else
        spans.push_back(right.source);
    result.leaps = MayLeap(left, op, right);
    const bool sums = op.level == Level::Sum;
    result.turns = sums || (op.kind == OperatorKind::Bits && op.level != Level::Shift);
    const bool bare = sums || op.text[0] == '*';
    result.upright = bare && IsUpright(left) && IsUpright(right);
}
