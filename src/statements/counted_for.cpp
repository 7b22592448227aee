//     for (int KVL_i = start; KVL_i <= end; KVL_i++)
//     {
// A step that is no literal may count either way, so its sign picks the comparison at run time:
//     for (KVL_i = start; (step) < 0 ? KVL_i >= end : KVL_i <= end; KVL_i += step)
#include <algorithm>

#include "driver/report.h"
#include "statements/for_loops.h"
#include "statements/selects.h"
#include "statements/words.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"

namespace {

struct Counter {
    std::string name;
    std::string cppName;
    ValueType type;
    bool declared = false;  // by this For
    bool typed = false;
};

// The statement cut into its parts.
struct Parts {
    TokenSpan start, end, step;
    bool stepGiven = false;
};

// For [Local] name [: type] = ; returns the index behind the "=".
std::size_t ReadCounter(TokenSpan tokens, Counter& counter) {
    std::size_t at = 1;
    if (IsWord(tokens[at], "local")) {
        counter.declared = true;
        ++at;
    }
    counter.name = tokens[at++];
    if (counter.name.empty()) ReportFatal("Expected a loop variable after 'For'");
    if (Is(tokens[at], ":")) {
        const std::string& type = tokens[at + 1];
        if (type.empty() || type == "=") ReportFatal("Expected type after ':' in For loop");
        counter.type = ParseType(type);
        if (counter.type.Is(Base::Void)) FailUnknownType(type);
        counter.declared = counter.typed = true;
        at += 2;
    }
    if (!Is(tokens[at], "=")) ReportFatal("Expecting assignment operator");
    return at + 1;
}

Parts Cut(TokenSpan tokens, std::size_t at) {
    Parts parts;
    std::size_t to = FindWord(tokens, "to", at);
    if (to == noToken) ReportFatal("Expected 'To' in For loop");
    std::size_t step = FindWord(tokens, "step", to);
    parts.stepGiven = step != noToken;
    if (!parts.stepGiven) step = tokens.size();
    parts.start = tokens.Slice(at, to);
    parts.end = tokens.Slice(to + 1, step);
    parts.step = tokens.From(step + 1);
    if (parts.start.empty()) ReportFatal("Expected a start value in For loop");
    if (parts.end.empty()) ReportFatal("Expected an end value after 'To' in For loop");
    if (parts.stepGiven && parts.step.empty()) ReportFatal("Expected a value after 'Step' in For loop");
    return parts;
}

Expr Number(TokenSpan tokens, const char* what) {
    Expr expr = TranslateExpression(tokens, ExprMode::Condition);
    if (expr.type.IsKnown() && !expr.type.IsNumber())
        ReportFatal(std::string("The ") + what + " of a For loop must be a number, got " +
                    KorvelName(expr.type));
    return expr;
}

// An untyped counter takes the type of its start value, but never one that is too narrow to count in.
ValueType CounterType(const Expr& start, TokenSpan end, TokenSpan step) {
    ValueType stepType = step.empty() ? Single(Base::Int) : InferType(step);
    if (start.type.Is(Base::Double) || stepType.Is(Base::Double)) return Single(Base::Double);
    bool isLong = start.type.Is(Base::Long) || stepType.Is(Base::Long) || InferType(end).Is(Base::Long);
    return Single(isLong ? Base::Long : Base::Int);
}

void CheckDeclaredCounter(Counter& counter) {
    Expr target = TranslateExpression(TokenSpan(&counter.name, &counter.name + 1), ExprMode::Statement);
    if (target.isConst) ReportFatal("Cannot assign to const variable '" + counter.name + "'");
    counter.cppName = target.text;
    counter.type = target.type;
}

void CheckCounterType(const Counter& counter, const Expr& start) {
    if (!counter.type.IsKnown()) return;
    if (!Assignable(counter.type, start.type)) FailMismatch(start.type, counter.type, counter.name);
    if (!counter.type.IsNumber() || counter.type.Is(Base::Bool))
        ReportFatal("For needs a numeric loop variable, but '" + counter.name + "' is " +
                    KorvelName(counter.type));
}

bool IsDigits(const std::string& token) {
    return !token.empty() && token.find_first_not_of("0123456789.") == std::string::npos;
}

// A number, perhaps with a sign: its direction is known from the text.
bool IsLiteralStep(TokenSpan step) {
    std::size_t at = step[0] == "-" || step[0] == "+" ? 1 : 0;
    if (step[at] == "." && at + 2 == step.size()) return IsDigits(step[at + 1]);
    if (at + 1 != step.size()) return false;
    return IsDigits(step[at]) || step[at][0] == '$';
}

std::string Joined(TokenSpan tokens) {
    std::string text;
    for (const std::string& token : tokens) text += token;
    return text;
}

// The part of the header behind the start: " comparison; increment)".
std::string ComparisonAndIncrement(const Counter& counter, const Expr& end, TokenSpan step) {
    const std::string endText = GuardedText(end, Level::Shift);
    const std::string stepText = step.empty() ? "+1" : Joined(step);
    const bool down = stepText[0] == '-';
    const std::string up = counter.cppName + " <= " + endText;
    const std::string downTo = counter.cppName + " >= " + endText;
    const std::string& comparison = down ? downTo : up;
    if (stepText == "+1" || stepText == "1") return comparison + "; " + counter.cppName + "++)";
    if (stepText == "-1") return comparison + "; " + counter.cppName + "--)";
    const std::string value = GuardedText(Number(step, "step"), Level::Or);
    const std::string increment = "; " + counter.cppName + " += " + value + ")";
    if (IsLiteralStep(step)) return comparison + increment;
    if (down) return "(" + value + ") > 0 ? " + up + " : " + downTo + increment;
    return "(" + value + ") < 0 ? " + downTo + " : " + up + increment;
}

// The start text of a counter declared here. One that reads an outer variable of the counter's name is
// worked out before the header, where the name means the counter already.
std::string StartText(State& state, const Counter& counter, const Expr& start, TokenSpan tokens) {
    const std::string text = TextAs(start, counter.type);
    if (std::find(tokens.begin(), tokens.end(), counter.name) == tokens.end()) return text;
    PrepareInSelect(state, "local");
    const std::string outer = "__kvStart" + std::to_string(state.currentLine) + "_" + SafeName(counter.name);
    EmitLine(state, CppName(counter.type) + " " + outer + " = " + text + ";");
    return outer;
}

}  // namespace

void TranslateCountedFor(State& state, TokenSpan tokens) {
    Counter counter;
    Parts parts = Cut(tokens, ReadCounter(tokens, counter));
    Expr start = Number(parts.start, "start");
    std::string head = "for (";
    if (counter.declared) {
        if (!counter.typed) counter.type = CounterType(start, parts.end, parts.step);
        CheckCounterType(counter, start);
        const std::string text = StartText(state, counter, start, parts.start);
        PushBlock();
        counter.cppName = DeclareLoopVariable(counter.name, counter.type).cppName;
        head += CppName(counter.type) + " " + counter.cppName + " = " + text;
    } else {
        PushBlock();
        CheckDeclaredCounter(counter);
        CheckCounterType(counter, start);
        head += counter.cppName + " = " + TextAs(start, counter.type);
    }
    Expr end = Number(parts.end, "end");
    EmitLine(state, head + "; " + ComparisonAndIncrement(counter, end, parts.step));
    EmitLine(state, "{");
    OpenLoop(state, "For").variable = counter.name;
}
