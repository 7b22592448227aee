#include "expressions/order.h"

#include <utility>
#include <vector>

#include "analysis/effects.h"
#include "expressions/operators.h"
#include "expressions/walk.h"

namespace {

bool IsSeen(const Expr* object, const Expr* parts) {
    bool effects = object != nullptr && object->effects;
    std::vector<TokenSpan> spans;
    if (object != nullptr) spans.push_back(object->source);
    for (; parts != nullptr && parts->given; parts = parts->next) {
        effects = effects || parts->effects;
        spans.push_back(parts->source);
    }
    return effects && spans.size() > 1 && OrderCanBeSeen(spans);
}

// What an expression of numbers that runs code was made of; nothing for any other.
struct Pieces {
    std::vector<TokenSpan> spans;
    EffectSet does;           // settled
    std::size_t covered = 0;  // so many spans are in it
};

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
    if (expr.hidden) return true;
    if (expr.kind == ExprKind::Parentheses) return IsOpaque(*expr.first);
    return expr.kind == ExprKind::Call && !expr.routine->isExtern && !expr.routine->isUserlib;
}

bool IsUpright(const Expr& expr) { return IsOpaque(expr) || expr.upright; }

// An item, a member behind a pointer, or what a reference stands for.
bool IsPlace(const Expr& expr) {
    const Variable* variable = VariableOf(expr);
    if (variable != nullptr && variable->isItem) return true;
    return expr.assignable && !IsBareVariable(expr.source);
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

// Whether g++ may find that the value of what they make is known, and works out the calls in it before all else:
// KVL_First (  ) + KVL_Second (  ) * 0
bool MayLeap(const Expr& left, const BinaryOperator& op, const Expr& right) {
    return left.leaps || right.leaps || (op.level != Level::Sum && (IsFixed(left) || IsFixed(right)));
}

// A sum of whole numbers with one that is known: g++ makes B + 6 >= A of A < B + 7.
bool HoldsKnownNumber(const Expr& expr) {
    if (expr.kind == ExprKind::Parentheses || expr.kind == ExprKind::Sign ||
        expr.kind == ExprKind::Conversion)
        return HoldsKnownNumber(*expr.first);
    const bool sums = expr.kind == ExprKind::Operation && expr.operation->level == Level::Sum;
    return sums && !expr.type.Is(Base::Double) && (IsFixed(*expr.first) || IsFixed(*expr.first->next));
}

void Hide(Expr& expr) {
    expr.level = Level::Primary;
    expr.hidden = true;
    expr.turns = expr.leaps = false;
}

void HideSum(Expr& expr, const Pieces& pieces) {
    if (expr.turns && OrderCanBeSeen(pieces.spans)) Hide(expr);
}

bool IsSeen(const Expr& left, Pieces& pieces, const Expr& right) {
    if (!left.effects && !right.effects) return false;
    for (; pieces.covered < pieces.spans.size(); ++pieces.covered)
        pieces.does.Add(EffectsOf(pieces.spans[pieces.covered]));
    pieces.does.Settle();
    return Conflict(pieces.does, EffectsOf(right.source));
}

// Makes g++ work out the left operand before the right one, and leave the order inside of either.
void KeepOperands(Expr& left, Pieces& leftPieces, const BinaryOperator& op, Expr& right,
                  const Pieces& rightPieces) {
    if (op.level != Level::Sum && !IsComparison(&op)) HideSum(left, leftPieces);
    if (op.kind != OperatorKind::Add && !IsComparison(&op)) HideSum(right, rightPieces);
    if (leftPieces.spans.empty()) leftPieces.spans.push_back(left.source);
    const bool leaps = right.effects && (right.leaps || (IsComparison(&op) && HoldsKnownNumber(right)));
    const bool stays = StaysInPlace(left, op, right);
    if ((stays && !leaps) || !IsSeen(left, leftPieces, right)) return;
    if (!stays) Hide(left);
    if (leaps) Hide(right);
}

// What the operation was made of becomes what its left operand was made of and the right one.
void NoteOperands(Expr& expr, Pieces& pieces, const Pieces& right) {
    const Expr &a = *expr.first, &b = *a.next;
    const BinaryOperator& op = *expr.operation;
    expr.leaps = MayLeap(a, op, b);
    if (b.turns)
        pieces.spans.insert(pieces.spans.end(), right.spans.begin(), right.spans.end());
    else
        pieces.spans.push_back(b.source);
    const bool sums = op.level == Level::Sum;
    expr.turns = sums || (op.kind == OperatorKind::Bits && op.level != Level::Shift);
    expr.upright = (sums || op.text[0] == '*') && IsUpright(a) && IsUpright(b);
}

Pieces Keep(Expr& expr);

// Default values have been settled where their names mean what they say.
void KeepParts(Expr* parts) {
    for (Expr& part : PartRange{parts})
        if (part.given) Keep(part);
}

bool AreTexts(const Expr& a, const Expr& b) { return a.type.Is(Base::String) && b.type.Is(Base::String); }

// `pieces` are those of the left operand, and become those of the operation.
void KeepOperation(Expr& expr, Pieces& pieces) {
    Expr &left = *expr.first, &right = *left.next;
    const Pieces rightPieces = Keep(right);
    const BinaryOperator& op = *expr.operation;
    const bool compares = IsComparison(&op);
    if (op.kind == OperatorKind::Logic) {
        expr.leaps = true;
    } else if (expr.kind != ExprKind::Operation || (compares && AreTexts(left, right))) {
        expr.ordered = OrderMatters(left, right);
        if (expr.ordered && expr.kind == ExprKind::Elements) expr.level = Level::Primary;
    }
    const bool calculates =
        expr.kind == ExprKind::Operation && op.kind != OperatorKind::Logic && !expr.ordered;
    if (calculates) KeepOperands(left, pieces, op, right, rightPieces);
    if (calculates && compares) expr.leaps = MayLeap(left, op, right);
    if (calculates && !compares && expr.effects)
        NoteOperands(expr, pieces, rightPieces);
    else
        pieces = Pieces();
}

bool IsOperation(const Expr& expr) { return expr.operation != nullptr; }

// Operations in a row, of which there may be thousands: a + b - c
Pieces KeepChain(Expr& top) {
    std::vector<Expr*> chain;
    Expr* operand = &top;
    for (; IsOperation(*operand); operand = operand->first) chain.push_back(operand);
    Pieces pieces = Keep(*operand);
    for (; !chain.empty(); chain.pop_back()) KeepOperation(*chain.back(), pieces);
    return pieces;
}

// The braces reach from the first part that cannot trade places with another one to the last such.
void KeepSum(Expr& sum) {
    KeepParts(sum.first);
    if (!sum.effects) return;
    std::vector<std::pair<const Expr*, EffectSet>> parts;
    for (const Expr& part : PartsOf(sum)) {
        const EffectSet does = EffectsOf(part.source);
        for (unsigned i = 0; i < parts.size(); ++i) {
            const auto& [other, before] = parts[i];
            if ((!other->effects && !part.effects) || !Conflict(before, does)) continue;
            sum.from = sum.to == 0 || i < sum.from ? i : sum.from;
            sum.to = static_cast<unsigned>(parts.size()) + 1;
            break;
        }
        parts.emplace_back(&part, does);
    }
    if (sum.to == parts.size() && sum.from == 0) sum.level = Level::Primary;
}

// The signs and brackets that leave what is in them as it is.
Pieces KeepWrapper(Expr& expr) {
    Expr& part = *expr.first;
    Pieces pieces = Keep(part);
    if (expr.kind == ExprKind::Sign) {
        if (expr.text[0] != '!') HideSum(part, pieces);
        expr.leaps = part.leaps || expr.text[0] == '~';
        return {};
    }
    expr.turns = part.turns;
    expr.leaps = part.leaps;
    expr.upright = part.upright && expr.kind == ExprKind::Parentheses;
    return pieces;
}

// Indices that C++ would take in another order than they are written in, or before what they are looked up in.
void KeepIndices(Expr& item) {
    const Expr& array = *item.first;
    if (array.form != ArrayForm::Pointer && array.form != ArrayForm::None)
        item.ordered = IsLookUpSeen(array, array.next);
}

Pieces Keep(Expr& expr) {
    if (IsOperation(expr)) return KeepChain(expr);
    switch (expr.kind) {
        case ExprKind::Sign:
        case ExprKind::Parentheses:
        case ExprKind::Conversion:
            return KeepWrapper(expr);
        case ExprKind::Sum:
            KeepSum(expr);
            return {};
        case ExprKind::Holes:  // whose trees have been settled
            expr.ordered = IsSeen(nullptr, expr.first);
            return {};
        default:
            break;
    }
    if (expr.object != nullptr) Keep(*expr.object);
    KeepParts(expr.first);
    switch (expr.kind) {
        case ExprKind::Call:
        case ExprKind::Create:
        case ExprKind::Math:
        case ExprKind::Library:
            expr.ordered = IsSeen(nullptr, expr.first);
            expr.named = expr.ordered && expr.object != nullptr && IsSeen(expr.object, expr.first);
            break;
        case ExprKind::Index:
            KeepIndices(expr);
            break;
        default:
            break;
    }
    return {};
}

}  // namespace

void KeepOrder(Expr& root) {
    if (root.effects) Keep(root);
}

bool OrderMatters(const Expr& first, const Expr& second) {
    return (first.effects || second.effects) && OrderCanBeSeen(std::vector{first.source, second.source});
}

bool OrderMatters(const Expr* parts) { return IsSeen(nullptr, parts); }

bool MayRepeat(const Expr& operand) { return !operand.effects || MayRepeat(operand.source); }

bool IsLookUpSeen(const Expr& place, const Expr* others) {
    bool effects = place.effects;
    for (const Expr* other = others; other != nullptr; other = other->next)
        effects = effects || other->effects || other->level == Level::Assignment;
    if (!effects) return false;
    std::vector<EffectSet> pieces = {EffectsOfPlace(place.source)};
    for (const Expr* other = others; other != nullptr; other = other->next) {
        const bool assigns = other->level == Level::Assignment;
        pieces.push_back(assigns ? EffectsOfAssigned(other->source) : EffectsOf(other->source));
    }
    return OrderCanBeSeen(pieces);
}
