#include "expressions/expression.h"

#include "base/report.h"
#include "base/run.h"
#include "base/settings.h"
#include "expressions/operators.h"
#include "expressions/order.h"
#include "expressions/walk.h"
#include "lexer/lexer.h"
#include "symbols/uses.h"

Watches watches;

namespace {

constexpr int deepest = 250;        // nested brackets, calls and signs
constexpr int longestChain = 1000;  // divisions in a row that each wrap what stands before
constexpr std::size_t mostParts = 5000;

int depth = 0;

const PartOfRun partOfRun(depth);

[[noreturn]] void FailTooDeep() {
    ReportFatal("Expression too deeply nested. Give a part of it to a variable first");
}

// Operators that bind tighter than or as tight as `loosest`, from left to right.
Expr& ParseBinary(Walk& walk, Level loosest, bool comparing) {
    const std::size_t begin = walk.at;
    Expr* left = &ParseUnary(walk);
    left->source = walk.Since(begin);
    PartList texts;
    int wraps = 0;
    std::size_t length = 0;
    for (const BinaryOperator* op = PeekBinary(walk, comparing, length);
         op != nullptr && op->level <= loosest; op = PeekBinary(walk, comparing, length)) {
        walk.at += length;
        LimitParts(++walk.operators);
        const auto tighter = static_cast<Level>(static_cast<int>(op->level) - 1);
        Expr& right = ParseBinary(walk, tighter, comparing);
        if (watches.operation != nullptr)
            watches.operation({*op, {left->source.last, left->source.last + length}, *left, right});
        if (op->level == Level::Product && ++wraps > longestChain && settings.safeMode) FailTooDeep();
        left = &Combine(*left, *op, right, texts);
        left->source = walk.Since(begin);
    }
    return *left;
}

Expr& Assign(Expr& target, Expr& value) {
    CheckAssignable(target, value);
    CheckConversion(value, target.type);
    Expr& result = NewNode(ExprKind::Assignment, target.type, target, value);
    result.level = Level::Assignment;
    return result;
}

Expr& TranslateSome(TokenSpan tokens, ExprMode mode) {
    Walk walk(tokens, mode);
    Expr& result = mode == ExprMode::Statement ? ParseAssignment(walk) : ParseValue(walk);
    if (!walk.Done()) FailUnexpected(walk);
    LeaveAsWritten(result);
    KeepOrder(result);
    NoteType(tokens, result.type);
    return result;
}

Expr& Translate(TokenSpan tokens, ExprMode mode) {
    tokens = tokens.WithoutComment();
    if (tokens.empty()) return NewNode(ExprKind::Nothing, Single(Base::Void));
    Expr* result = nullptr;
    About(tokens, [&] { result = &TranslateSome(tokens, mode); });
    return *result;
}

}  // namespace

void LimitParts(std::size_t count) {
    if (count > mostParts)
        ReportFatal("Expression has more than " + std::to_string(mostParts) +
                    " parts. Spread them over several statements");
}

DepthGuard::DepthGuard() {
    if (depth == deepest) FailTooDeep();
    ++depth;
}
DepthGuard::~DepthGuard() { --depth; }

void Walk::Expect(char sign) {
    if (Match(sign)) return;
    const std::string found = Done() ? "the end of the statement" : "'" + Peek() + "'";
    const bool isSecondIndex = sign == ']' && PeekSign() == ',';
    ReportFatal(std::string("Expected '") + sign + "' but found " + found + MissingBefore(*this) +
                    Hint{isSecondIndex ? "Each index has brackets of its own: table[1][2]" : ""},
                Done() ? Taken() : tokens.Slice(at, at + 1));
}

Expr& ParseValue(Walk& walk) { return ParseBinary(walk, Level::Or, true); }

Expr& ParseAssignment(Walk& walk) {
    const DepthGuard guard;
    Expr& left = ParseBinary(walk, Level::Or, false);
    return walk.Match('=') ? Assign(left, ParseAssignment(walk)) : left;
}

Expr& ParseUnary(Walk& walk) {
    const DepthGuard guard;
    const UnaryOperator* op = PeekUnary(walk);
    if (op == nullptr) return ParsePrimary(walk);
    ++walk.at;
    return ApplyUnary(*op, ParseUnary(walk));
}

Expr& TranslateExpression(TokenSpan tokens, ExprMode mode) {
    if (settings.verbose) Say(tokens.empty() ? "" : "'" + tokens.Text("', '") + "'");
    return Translate(tokens, mode);
}

Expr& TranslateValue(TokenSpan tokens, ExprMode mode) {
    Expr& result = TranslateExpression(tokens, mode);
    if (result.kind != ExprKind::Nothing) About(tokens, [&] { RequireValue(result); });
    return result;
}

std::string GetExpressionType(TokenSpan tokens) {
    if (tokens.empty()) return "unknown";
    if (settings.verbose) Say("  [GetExpressionType] Tokens: '" + tokens.Text("' '") + "' ");
    const Expr& expr = Translate(tokens, ExprMode::Condition);
    const std::string type = CppName(expr.type);
    if (tokens.size() >= 2 && Is(tokens[0], "Create")) {
        VerboseNote("  [GetExpressionType] Detected Create statement, returning type: " + type);
    } else {
        VerboseNote("  [GetExpressionType] Inferred type from expression '" + TextOf(expr).text +
                    "': " + type);
    }
    return type;
}

ValueType InferType(TokenSpan tokens) {
    const BorrowedNodes nodes;
    return Translate(tokens, ExprMode::Condition).type;
}
