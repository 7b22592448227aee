#include "statements/words.h"

#include "base/report.h"

void RefuseMore(TokenSpan tokens, std::size_t from) {
    if (tokens.size() > from)
        ReportFatal("Unexpected '" + tokens[from] + "' after '" + tokens[from > 0 ? from - 1 : 0] + "'",
                    tokens.Slice(from, from + 1));
}

const Expr& WriteCondition(Code& out, TokenSpan tokens, const std::string& keyword) {
    if (tokens.empty()) ReportFatal("Expected a condition after '" + keyword + "'");
    const Expr& condition = TranslateValue(tokens, ExprMode::Condition);
    const ValueType& type = condition.type;
    bool fits = !type.IsKnown() || type.IsNumber() || type.IsReference();
    if (!fits)
        ReportFatal("The condition of '" + keyword + "' must be a comparison, a number or an object, got " +
                        KorvelName(type) + Hint{type.Is(Base::String) ? "Compare it: s <> \"\"" : ""},
                    tokens);
    WriteValue(out, condition);
    return condition;
}

void FailMismatch(const ValueType& from, const ValueType& to, const std::string& variable, TokenSpan value) {
    Wording message = "Type mismatch: Cannot assign " + InWords(from) + " to " + InWords(to) + " variable '" +
                      variable + "'" + ConversionHint(to, from);
    if (from.Is(Base::Void))
        message.plain =
            "This call gives no value to assign to '" + variable + "': it has no type for its result";
    ReportFatal(message, value);
}

Code ConditionText(TokenSpan tokens, const std::string& keyword) {
    Code condition;
    WriteCondition(condition, tokens, keyword);
    return condition;
}

void WriteGuarded(Code& out, const Expr& expr, Level weakest) {
    const bool guarded = expr.level > weakest;
    Put(out, guarded ? "(" : "", AsValue{expr}, guarded ? ")" : "");
}

Code GuardedText(const Expr& expr, Level weakest) {
    Code text;
    WriteGuarded(text, expr, weakest);
    return text;
}

Code WalkableText(const Expr& expr) {
    if (expr.form != ArrayForm::Owned || expr.byValue) return ValueText(expr);
    return TakeOver(expr, expr.type.base == Base::Element && expr.type.dims == 1);
}
