// Types of operators.
#include "base/debugger.h"
#include "base/report.h"
#include "base/settings.h"
#include "expressions/operators.h"
#include "expressions/order.h"
#include "prelude/output.h"
#include "prelude/support.h"

namespace {

bool IsText(const Expr& expr) { return expr.type.Is(Base::String); }
bool IsPointer(const Expr& expr) { return expr.type.IsReference() || expr.type.Is(Base::Null); }
bool IsTruth(const Expr& expr) {
    return !expr.type.IsKnown() || expr.type.IsNumber() || expr.type.IsReference();
}

const BinaryOperator plus = {"+", "+", Level::Sum, OperatorKind::Add};

// What C++ makes of two numbers: at least an Int.
Base CommonNumber(const Expr& a, const Expr& b) {
    if (a.type.base == Base::Double || b.type.base == Base::Double) return Base::Double;
    return a.type.base == Base::Long || b.type.base == Base::Long ? Base::Long : Base::Int;
}

bool Checked() { return ChecksValues(); }

[[noreturn]] void FailOperands(const Expr& left, const BinaryOperator& op, const Expr& right) {
    Wording message = std::string("Operator '") + op.korvel + "' cannot be used between " +
                      KorvelName(left.type) + " and " + KorvelName(right.type);
    if (IsText(left) && right.type.IsNumber()) message = message + ConversionHint(right.type, left.type);
    if (left.type.IsNumber() && IsText(right)) message = message + ConversionHint(left.type, right.type);
    const bool isText = IsText(left) || IsText(right);
    const std::string_view sign = op.text;
    if (isText && sign == "&")
        message.hint = "Texts are joined with '+'; '&' stands between the items of a Print";
    if (isText && sign == "*")
        message.hint = "Write Repeated(text, 3). It comes with Include \"std/text.kvl\"";
    if (IsText(left) && sign == "%")
        message.hint = "Values stand in holes of the text: \"{%count} times {$name}\"";
    if (left.type.sequence && sign == "+") message.hint = "SeqAdd s, 3 puts an item at the end of a Sequence";
    const bool known = !left.source.empty() && !right.source.empty();
    ReportFatal(message, known ? TokenSpan(left.source.first, right.source.last) : TokenSpan());
}

// An operator of C++, or a node of another kind that puts the operands together.
Expr& Join(Expr& left, const BinaryOperator& op, Expr& right, const ValueType& type,
           ExprKind kind = ExprKind::Operation) {
    Expr& result = NewNode(kind, type, left, right);
    result.operation = &op;
    if (kind == ExprKind::Operation) result.level = op.level;
    return result;
}

bool Concatenable(const Expr& expr) { return IsText(expr) || expr.type.IsNumber() || !expr.type.IsKnown(); }

Expr& Concatenate(Expr& left, Expr& right, PartList& texts) {
    if (!Concatenable(left) || !Concatenable(right)) FailOperands(left, plus, right);
    Expr* sum = &left;
    if (texts.size() == 0) {
        texts.Add(left);
        sum = &NewNode(ExprKind::Sum, Single(Base::String), left);
        sum->level = Level::Sum;
    }
    texts.Add(right);
    LimitTexts(texts.size());
    if (texts.size() > manyTexts) sum->level = Level::Primary;
    sum->effects = texts.HaveEffects();
    return *sum;
}

Expr& Divide(Expr& left, const BinaryOperator& op, Expr& right) {
    if (!left.type.IsKnown() || !right.type.IsKnown()) return Join(left, op, right, {});
    const ValueType common = Single(CommonNumber(left, right));
    if (Checked()) {
        NotePreludeUse();
        return Join(left, op, right, common, ExprKind::Quotient);
    }
    const bool real = op.kind == OperatorKind::Remainder && common.base == Base::Double;
    return Join(left, op, right, common, real ? ExprKind::Remainder : ExprKind::Operation);
}

Expr& Arithmetic(Expr& left, const BinaryOperator& op, Expr& right) {
    const bool known = left.type.IsKnown() && right.type.IsKnown();
    const bool numbers =
        (left.type.IsNumber() || !left.type.IsKnown()) && (right.type.IsNumber() || !right.type.IsKnown());
    if (!numbers) FailOperands(left, op, right);
    if (op.kind == OperatorKind::Divide || op.kind == OperatorKind::Remainder) return Divide(left, op, right);
    const Base common = CommonNumber(left, right);
    if (op.kind == OperatorKind::Bits && common == Base::Double) FailOperands(left, op, right);
    return Join(left, op, right, known ? Single(common) : ValueType());
}

Expr& CompareElements(Expr& left, const BinaryOperator& op, Expr& right) {
    NeedClass(left.type.cls);
    Expr& result = Join(left, op, right, Single(Base::Bool), ExprKind::Elements);
    result.level = op.text[0] == '=' ? Level::Equality : Level::Unary;
    return result;
}

bool Comparable(const Expr& left, const BinaryOperator& op, const Expr& right) {
    if (!left.type.IsKnown() || !right.type.IsKnown()) return true;
    if (left.type.IsNumber() && right.type.IsNumber()) return true;
    if (IsText(left) && IsText(right)) return true;
    if (op.kind == OperatorKind::Order || !IsPointer(left) || !IsPointer(right)) return false;
    return left.type == right.type || !left.type.Is(Base::Object) || !right.type.Is(Base::Object);
}

Expr& Compare(Expr& left, const BinaryOperator& op, Expr& right) {
    if (op.kind == OperatorKind::Equality && left.type.Is(Base::Element) && left.type == right.type)
        return CompareElements(left, op, right);
    if (!Comparable(left, op, right)) FailOperands(left, op, right);
    return Join(left, op, right, Single(Base::Bool));
}

Expr& Logic(Expr& left, const BinaryOperator& op, Expr& right) {
    if (!IsTruth(left) || !IsTruth(right)) FailOperands(left, op, right);
    return Join(left, op, right, Single(Base::Bool));
}

}  // namespace

void LimitTexts(std::size_t count) {
    constexpr std::size_t most = 1000;
    if (count > most)
        ReportFatal("Expression joins more than " + std::to_string(most) +
                    " Strings. Spread them over several statements");
}

Expr& Combine(Expr& left, const BinaryOperator& op, Expr& right, PartList& texts) {
    RequireValue(left);
    RequireValue(right);
    if (op.kind == OperatorKind::Add && (IsText(left) || IsText(right)))
        return Concatenate(left, right, texts);
    texts = PartList();
    switch (op.kind) {
        case OperatorKind::Order:
        case OperatorKind::Equality:
            return Compare(left, op, right);
        case OperatorKind::Logic:
            return Logic(left, op, right);
        default:
            return Arithmetic(left, op, right);
    }
}

Expr& ApplyUnary(const UnaryOperator& op, Expr& operand) {
    RequireValue(operand);
    const bool known = operand.type.IsKnown();
    const bool fits = op.kind == UnaryKind::Not    ? IsTruth(operand)
                      : op.kind == UnaryKind::Sign ? operand.type.IsNumber()
                                                   : operand.type.IsInteger();
    if (known && !fits) {
        const bool isNot = op.kind == UnaryKind::Not;
        ReportFatal(
            std::string("Operator '") + op.korvel + "' cannot be used with " + KorvelName(operand.type) +
                (isNot ? Hint{"It means only what stands right behind it: Not (a = b), or a <> b"} : Hint()),
            operand.source);
    }
    const ValueType type = op.kind == UnaryKind::Not ? Single(Base::Bool)
                           : known                   ? Single(CommonNumber(operand, operand))
                                                     : ValueType();
    Expr& result = NewNode(ExprKind::Sign, type, operand);
    result.text = op.text;
    result.level = Level::Unary;
    return result;
}
