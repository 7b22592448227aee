// Texts of operators.
#include <vector>

#include "base/settings.h"
#include "expressions/in_order.h"
#include "expressions/operators.h"
#include "expressions/order.h"
#include "expressions/writer.h"
#include "prelude/support.h"
#include "symbols/own_names.h"

namespace {

// The left operand. C++ compares no two literals by their texts.
void WriteLeft(Code& out, const Expr& expr) {
    const Expr& left = *expr.first;
    const bool bare = left.literal && left.next->literal && IsComparison(expr.operation);
    Put(out, bare ? "std::string(" : "", AsValue{left}, bare ? ")" : "");
}

// The operator and the right operand.
void WriteRight(Code& out, const Expr& expr) {
    Put(out, " ", expr.operation->text, " ", AsValue{*expr.first->next});
}

// The operand of a checked division, of the type that both operands have in common.
void WriteCheckedOperand(Code& out, const Expr& operand, const ValueType& common) {
    const bool exact =
        operand.type.base == common.base && (common.base != Base::Long || VariableOf(operand) != nullptr);
    if (exact) return Write(out, operand);
    Put(out, "static_cast<", CppName(common), ">(", operand, ")");
}

// __kvTexts{a, b}.Order() < 0
void WriteTextsInOrder(Code& out, const Expr& expr) {
    RequireSupport(Support::TextInOrder);
    out += "__kvTexts{";
    WriteLeft(out, expr);
    Put(out, ", ", *expr.first->next, "}.Order() ", expr.operation->text, " 0");
}

// Whether its text is that of its operands with the operator between them.
bool IsPlain(const Expr& expr) { return expr.kind == ExprKind::Operation && !expr.ordered; }

}  // namespace

void WriteSign(Code& out, const Expr& expr) { Put(out, expr.text, " ", *expr.first); }

// From the innermost left operand on, since thousands may stand in a row.
void WriteOperation(Code& out, const Expr& expr) {
    if (expr.ordered) return WriteTextsInOrder(out, expr);
    std::vector<const Expr*> chain;
    for (const Expr* left = expr.first; IsPlain(*left); left = left->first) {
        BeginHidden(out, *left);
        chain.push_back(left);
    }
    WriteLeft(out, chain.empty() ? expr : *chain.back());
    for (; !chain.empty(); chain.pop_back()) {
        WriteRight(out, *chain.back());
        EndHidden(out, *chain.back());
    }
    WriteRight(out, expr);
}

// SafeDiv(a, b)
// C++ takes the arguments of a call in any order, but not what stands between braces:
//     __kvInOrder<int>{a, b}.Quotient()
void WriteQuotient(Code& out, const Expr& expr) {
    const bool remainder = expr.operation->kind == OperatorKind::Remainder;
    const Expr& left = *expr.first;
    if (expr.ordered || (remainder && expr.type.base == Base::Double)) RequireSupport(Support::SafeOperands);
    out += expr.ordered ? "__kvInOrder<" + CppName(expr.type) + ">{"
                        : (remainder ? SafeModName() : SafeDivName()) + "(";
    WriteCheckedOperand(out, left, expr.type);
    out += ", ";
    WriteCheckedOperand(out, *left.next, expr.type);
    if (expr.ordered)
        out += remainder ? "}.Remainder()" : "}.Quotient()";
    else
        out += ')';
}

// std::fmod(a, b)
void WriteRemainder(Code& out, const Expr& expr) {
    const Expr &a = *expr.first, &b = *a.next;
    if (!expr.ordered) return Put(out, "std::fmod(", a, ", ", b, ")");
    InOrder inOrder;
    const std::string first = inOrder.Name(expr.type, TextOf(a)), second = inOrder.Name(expr.type, TextOf(b));
    inOrder.Write(out, CppName(expr.type), "std::fmod(" + first + ", " + second + ")");
}

// The struct has no operator!=, and takes the right operand by reference. In order:
//     [&]() -> bool { KVL_E __kv0 = left; KVL_E __kv1 = right; return __kv0 == __kv1; }()
void WriteElements(Code& out, const Expr& expr) {
    const Expr &left = *expr.first, &right = *left.next;
    InOrder inOrder;
    Code a = ValueText(left), b = ValueText(right);
    if (expr.ordered) {
        a = inOrder.Name(left.type, a);
        b = inOrder.Name(right.type, b);
    }
    Code equal = a + " == " + b;
    if (expr.operation->text[0] != '=') equal = "! ( " + equal + " )";
    if (expr.ordered)
        inOrder.Write(out, "bool", equal);
    else
        out += equal;
}

void WritePart(Code& out, const Expr& part) {
    const bool text = part.type.Is(Base::String) || !part.type.IsKnown();
    Put(out, text ? "" : "std::to_string(", part, text ? "" : ")");
}

// Where the order of its parts can be seen they stand between braces, which C++ works out from left to right:
//     text + __kvText({KVL_First (  ), ", ", KVL_Second (  )})
void WriteSum(Code& out, const Expr& sum) {
    const std::size_t count = PartsOf(sum).size();
    const bool flat = count > manyTexts;
    const std::size_t open = flat ? 0 : sum.from, end = flat ? count : sum.to;
    if (end > 0) RequireSupport(Support::TextInOrder);
    std::size_t i = 0;
    for (const Expr& part : PartsOf(sum)) {
        const bool inside = i >= open && i < end;
        if (i > 0) out += inside && i > open ? ", " : " + ";
        if (inside && i == open) out += "__kvText({";
        // C++ cannot add two literals.
        const bool bare = i == 0 && part.literal && part.next->literal && !inside;
        if (bare) out += "std::string(";
        WritePart(out, part);
        if (bare) out += ')';
        if (inside && i + 1 == end) out += "})";
        ++i;
    }
}
