// Statements that are calls: Draw 1, 2 ; p\Move(1) ; Tick ; Insert a After b.
#include "base/report.h"
#include "expressions/operators.h"
#include "expressions/order.h"
#include "expressions/walk.h"
#include "lexer/lexer.h"
#include "symbols/scopes.h"

namespace {

// An array that nobody takes must be freed all the same.
void WriteDiscarded(Code& out, const Expr& call) {
    const bool freed = call.form != ArrayForm::Owned || call.byValue;
    if (freed)
        Write(out, call);
    else
        out += TakeOver(call, call.type.base == Base::Element);
}

}  // namespace

bool TranslateCallStatement(TokenSpan tokens, Code& out) {
    tokens = tokens.WithoutComment();
    if (tokens.empty() || (!IsIdentifier(tokens[0]) && !Is(tokens[0], "("))) return false;
    Walk walk(tokens, ExprMode::Statement);
    walk.callStatement = true;
    Expr& expr = ParsePrimary(walk);
    const std::string& next = walk.Peek();
    if ((next == "+" || next == "-") && walk.Peek(1) == next && walk.at + 2 == tokens.size()) {
        ReportFatal("There is no operator '" + next + next + "'. Write the assignment out, as in 'x = x " +
                    next + " 1'");
    }
    if (!expr.isCall && !Has(tokens.KeywordAt(0), trait::creates)) return false;
    if (!walk.Done()) FailUnexpected(walk);
    if (watches.callStatement != nullptr) watches.callStatement({tokens, expr});
    KeepOrder(expr);
    WriteDiscarded(out, expr);
    return true;
}
