// Types and texts of operators.
#include "base/report.h"
#include "base/settings.h"
#include "expressions/in_order.h"
#include "expressions/operand_order.h"
#include "expressions/operators.h"
#include "expressions/text_sum.h"
#include "prelude/output.h"
#include "prelude/support.h"
#include "symbols/own_names.h"

namespace {

bool IsText(const Expr& expr) { return expr.type.Is(Base::String); }
bool IsPointer(const Expr& expr) {
    return expr.type.Is(Base::Object) || expr.type.Is(Base::Pointer) || expr.type.Is(Base::Null);
}
bool IsTruth(const Expr& expr) {
    return !expr.type.IsKnown() || expr.type.IsNumber() || expr.type.Is(Base::Object) ||
           expr.type.Is(Base::Pointer);
}

const BinaryOperator plus = {"+", "+", Level::Sum, OperatorKind::Add};

// What C++ makes of two numbers: at least an Int.
Base CommonNumber(const Expr& a, const Expr& b) {
    if (a.type.base == Base::Double || b.type.base == Base::Double) return Base::Double;
    return a.type.base == Base::Long || b.type.base == Base::Long ? Base::Long : Base::Int;
}

bool Checked() { return settings.safeMode && !settings.debugMode; }

[[noreturn]] void FailOperands(const Expr& left, const BinaryOperator& op, const Expr& right) {
    std::string message = std::string("Operator '") + op.korvel + "' cannot be used between " +
                          KorvelName(left.type) + " and " + KorvelName(right.type);
    if (IsText(left) && right.type.IsNumber()) message += ConversionHint(right.type, left.type);
    if (left.type.IsNumber() && IsText(right)) message += ConversionHint(left.type, right.type);
    const bool known = !left.source.empty() && !right.source.empty();
    ReportFatal(message, known ? TokenSpan(left.source.first, right.source.last) : TokenSpan());
}

// Takes the text of the left operand.
Expr Join(Expr& left, const BinaryOperator& op, const Expr& right, const ValueType& type) {
    Expr result;
    result.text = left.slot ? ValueText(left) : std::move(left.text);
    result.text += ' ';
    result.text += op.text;
    result.text += ' ';
    result.text += right.slot ? ValueText(right) : right.text;
    result.type = type;
    result.level = op.level;
    return result;
}

Expr Call(const std::string& function, const std::string& a, const std::string& b, const ValueType& type) {
    Expr result;
    result.text = function + "(" + a + ", " + b + ")";
    result.type = type;
    return result;
}

bool Concatenable(const Expr& expr) { return IsText(expr) || expr.type.IsNumber() || !expr.type.IsKnown(); }

Expr Concatenate(Expr& left, Expr& right) {
    if (!Concatenable(left) || !Concatenable(right)) FailOperands(left, plus, right);
    if (left.sum == nullptr) {
        auto sum = std::make_shared<TextSum>();
        sum->Add(std::move(left));
        left = Expr();
        left.sum = std::move(sum);
        left.type = Single(Base::String);
    }
    left.sum->Add(std::move(right));
    return std::move(left);
}

// The operand of a checked division, of the type that both operands have in common.
std::string CheckedOperand(const Expr& expr, Base common) {
    const bool exact = expr.type.base == common && (common != Base::Long || expr.variable != nullptr);
    return exact ? expr.text : "static_cast<" + CppName(Single(common)) + ">(" + expr.text + ")";
}

Expr FloatingRemainder(const Expr& left, const Expr& right) {
    const ValueType real = Single(Base::Double);
    if (!OrderMatters(left, right)) return Call("std::fmod", left.text, right.text, real);
    InOrder inOrder;
    const std::string a = inOrder.Name(real, left.text);
    const std::string b = inOrder.Name(real, right.text);
    Expr result = Call("std::fmod", a, b, real);
    result.text = inOrder.Text(CppName(real), result.text);
    return result;
}

// Operands that are worked out one after the other, in an operator of C++.
Expr Calculate(Expr& left, const BinaryOperator& op, Expr& right, const ValueType& type) {
    KeepOrder(left, op, right);
    Expr result = Join(left, op, right, type);
    NoteOperands(result, left, op, right);
    return result;
}

Expr Divide(Expr& left, const BinaryOperator& op, Expr& right) {
    const Base common = CommonNumber(left, right);
    if (!left.type.IsKnown() || !right.type.IsKnown()) return Calculate(left, op, right, {});
    const bool remainder = op.kind == OperatorKind::Remainder;
    if (!Checked()) {
        if (remainder && common == Base::Double) return FloatingRemainder(left, right);
        return Calculate(left, op, right, Single(common));
    }
    NotePreludeUse();
    // C++ takes the arguments of a call in any order, but not what stands between braces.
    const bool ordered = OrderMatters(left, right);
    if (ordered || (remainder && common == Base::Double)) RequireSupport(Support::SafeOperands);
    if (ordered) {
        Expr result;
        result.text = "__kvInOrder<" + CppName(Single(common)) + ">{" + CheckedOperand(left, common) + ", " +
                      CheckedOperand(right, common) + "}." + (remainder ? "Remainder()" : "Quotient()");
        result.type = Single(common);
        return result;
    }
    return Call(remainder ? SafeModName() : SafeDivName(), CheckedOperand(left, common),
                CheckedOperand(right, common), Single(common));
}

Expr Arithmetic(Expr& left, const BinaryOperator& op, Expr& right) {
    const bool known = left.type.IsKnown() && right.type.IsKnown();
    const bool numbers =
        (left.type.IsNumber() || !left.type.IsKnown()) && (right.type.IsNumber() || !right.type.IsKnown());
    if (!numbers) FailOperands(left, op, right);
    if (op.kind == OperatorKind::Divide || op.kind == OperatorKind::Remainder) return Divide(left, op, right);
    const Base common = CommonNumber(left, right);
    if (op.kind == OperatorKind::Bits && common == Base::Double) FailOperands(left, op, right);
    return Calculate(left, op, right, known ? Single(common) : ValueType());
}

// [&]() -> bool { KVL_E __kv0 = left; KVL_E __kv1 = right; return __kv0 == __kv1; }()
Expr CompareElementsInOrder(const Expr& left, const BinaryOperator& op, const Expr& right) {
    InOrder inOrder;
    const std::string a = inOrder.Name(left.type, ValueText(left));
    const std::string b = inOrder.Name(right.type, ValueText(right));
    const std::string equal = a + " == " + b;
    Expr result;
    result.text = inOrder.Text("bool", op.text[0] == '=' ? equal : "! ( " + equal + " )");
    result.type = Single(Base::Bool);
    return result;
}

// The struct has no operator!=, and takes the right operand by reference.
Expr CompareElements(Expr& left, const BinaryOperator& op, const Expr& right) {
    NeedClass(left.type.cls);
    if (OrderMatters(left, right)) return CompareElementsInOrder(left, op, right);
    if (op.text[0] == '=') return Join(left, op, right, Single(Base::Bool));
    Expr result;
    result.text = "! ( " + ValueText(left) + " == " + ValueText(right) + " )";
    result.type = Single(Base::Bool);
    result.level = Level::Unary;
    return result;
}

bool Comparable(const Expr& left, const BinaryOperator& op, const Expr& right) {
    if (!left.type.IsKnown() || !right.type.IsKnown()) return true;
    if (left.type.IsNumber() && right.type.IsNumber()) return true;
    if (IsText(left) && IsText(right)) return true;
    if (op.kind == OperatorKind::Order || !IsPointer(left) || !IsPointer(right)) return false;
    return left.type == right.type || !left.type.Is(Base::Object) || !right.type.Is(Base::Object);
}

Expr Compare(Expr& left, const BinaryOperator& op, Expr& right) {
    if (op.kind == OperatorKind::Equality && left.type.Is(Base::Element) && left.type == right.type) {
        return CompareElements(left, op, right);
    }
    if (!Comparable(left, op, right)) FailOperands(left, op, right);
    if (left.literal && right.literal) left.text = "std::string(" + left.text + ")";
    if (IsText(left) && IsText(right) && OrderMatters(left, right)) {
        RequireSupport(Support::TextInOrder);
        Expr order, zero;
        order.text = "__kvTexts{" + left.text + ", " + right.text + "}.Order()";
        zero.text = "0";
        return Join(order, op, zero, Single(Base::Bool));
    }
    KeepOrder(left, op, right);
    const bool leaps = MayLeap(left, op, right);
    Expr result = Join(left, op, right, Single(Base::Bool));
    result.leaps = leaps;
    return result;
}

Expr Logic(Expr& left, const BinaryOperator& op, const Expr& right) {
    if (!IsTruth(left) || !IsTruth(right)) FailOperands(left, op, right);
    Expr result = Join(left, op, right, Single(Base::Bool));
    result.leaps = true;
    return result;
}

}  // namespace

Expr Combine(Expr& left, const BinaryOperator& op, Expr& right) {
    RequireValue(left);
    RequireValue(right);
    switch (op.kind) {
        case OperatorKind::Add:
            if (IsText(left) || IsText(right)) return Concatenate(left, right);
            break;
        case OperatorKind::Order:
        case OperatorKind::Equality:
            return Compare(left, op, right);
        case OperatorKind::Logic:
            return Logic(left, op, right);
        default:
            break;
    }
    return Arithmetic(left, op, right);
}

Expr ApplyUnary(const UnaryOperator& op, Expr& operand) {
    RequireValue(operand);
    const bool known = operand.type.IsKnown();
    const bool fits = op.kind == UnaryKind::Not    ? IsTruth(operand)
                      : op.kind == UnaryKind::Sign ? operand.type.IsNumber()
                                                   : operand.type.IsInteger();
    if (known && !fits) {
        ReportFatal(
            std::string("Operator '") + op.korvel + "' cannot be used with " + KorvelName(operand.type),
            operand.source);
    }
    KeepOrder(op, operand);
    Expr result;
    result.text = std::string(op.text) + " " + operand.text;
    result.level = Level::Unary;
    result.leaps = operand.leaps || op.kind == UnaryKind::Complement;
    result.type = op.kind == UnaryKind::Not ? Single(Base::Bool)
                  : known                   ? Single(CommonNumber(operand, operand))
                                            : ValueType();
    return result;
}

void CloseSum(Expr& sum) {
    if (sum.sum != nullptr) sum.sum->Close(sum);
}
