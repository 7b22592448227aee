#include <algorithm>

#include "warnings/slips.h"

namespace {

bool IsNumber(TokenSpan tokens) { return tokens.size() == 1 && IsDigit(tokens[0][0]); }

// Whether it is, or may be, True or False.
bool MayBeTruth(const Expr& expr) { return !expr.type.IsKnown() || expr.type.Is(Base::Bool); }

// A text such as "10" or "-2.5".
bool IsNumberText(TokenSpan tokens) {
    if (tokens.size() != 1 || !IsQuoted(tokens[0])) return false;
    std::string_view text = Unquoted(tokens[0]);
    if (!text.empty() && text[0] == '-') text.remove_prefix(1);
    return !text.empty() && IsDigit(text[0]) &&
           std::all_of(text.begin(), text.end(), [](char c) { return IsDigit(c) || c == '.'; });
}

TokenSpan Spanning(const Operation& operation) {
    return {operation.left.source.first, operation.right.source.last};
}

}  // namespace

// Not a = b
TokenSpan NegatesOperand(const Operation& operation) {
    const bool means = operation.left.kind == ExprKind::Sign && operation.left.text[0] == '!' &&
                       IsComparison(&operation.op) && !MayBeTruth(operation.right);
    return means ? Spanning(operation) : TokenSpan();
}

// n ^ 2
TokenSpan IsPower(const Operation& operation) {
    const bool isHex =
        operation.left.source[0][0] == '$' || operation.right.source[0][0] == '$';  // who means bits
    return operation.sign.SignAt(0) == '^' && !isHex ? operation.sign : TokenSpan();
}

// 1 < n < 3
TokenSpan ComparesComparison(const Operation& operation) {
    if (!IsComparison(operation.left.operation) || !IsComparison(&operation.op)) return {};
    const bool ofTruths = operation.op.kind == OperatorKind::Equality && MayBeTruth(operation.right);
    return ofTruths ? TokenSpan() : Spanning(operation);
}

// n = 3 Or 4
TokenSpan JoinsNumber(const Operation& operation) {
    if (operation.op.kind != OperatorKind::Logic) return {};
    if (IsNumber(operation.right.source)) return operation.right.source;
    return IsNumber(operation.left.source) ? operation.left.source : TokenSpan();
}

// n BitAnd 1 = 0
TokenSpan ComparesInBits(const Operation& operation) {
    const bool means = operation.op.kind == OperatorKind::Bits && operation.op.level > Level::Equality &&
                       (IsComparison(operation.left.operation) || IsComparison(operation.right.operation));
    return means ? Spanning(operation) : TokenSpan();
}

// word < "10"
TokenSpan OrdersNumberTexts(const Operation& operation) {
    if (operation.op.kind != OperatorKind::Order) return {};
    const bool left = IsNumberText(operation.left.source), right = IsNumberText(operation.right.source);
    return left != right ? Spanning(operation) : TokenSpan();
}
