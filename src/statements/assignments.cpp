#include "statements/assignments.h"

#include <algorithm>
#include <string_view>

#include "analysis/bool_arrays.h"
#include "base/report.h"
#include "base/settings.h"
#include "expressions/expression.h"
#include "expressions/order.h"
#include "expressions/sequence_walks.h"
#include "statements/array_declarations.h"
#include "statements/array_loops.h"
#include "statements/string_append.h"
#include "statements/words.h"
#include "symbols/identifiers.h"
#include "symbols/misspelling.h"
#include "symbols/scopes.h"

namespace {

void CheckTarget(TokenSpan target, const Expr& expr) {
    const std::string& name = target[0];
    const Variable* variable = VariableOf(expr);
    if (target.size() == 1 && variable != nullptr && variable->isConst)
        ReportFatal("Cannot assign to const variable '" + name + "'", Tokens{name});
    if (!expr.assignable && expr.type.IsKnown())
        ReportFatal("Cannot assign to '" + target.Text("") + "': it is no variable, Field or array element" +
                    Hint{IsWord(name, "seqget") ? "SeqSet s, 0, 3 changes an item of a Sequence" : ""});
}

void CheckConstTarget(TokenSpan target) {
    const Variable* variable = FindVariable(target.At(0));
    if (variable != nullptr && variable->isConst)
        ReportFatal("Cannot assign to const variable '" + target[0] + "'", target.Slice(0, 1));
}

// A declared array keeps its size: it receives the items of the returned one.
//     { std::vector<int> _from = __kvTakeArray(KVL_Next ( KVL_a.data() ));
//     for(size_t _i0 = 0; _i0 < KVL_a.size() && _i0 < _from.size(); ++_i0) KVL_a[_i0] = _from[_i0]; }
void AssignArrayResult(State& state, const Expr& target, const Expr& value) {
    const ValueType& type = target.type;
    const bool fixed = target.form == ArrayForm::Fixed && VariableOf(target) != nullptr;
    const bool keeps = fixed || target.form == ArrayForm::Vector;
    if (!keeps || value.form != ArrayForm::Owned) FailArrayAssignment(type, value);
    if (type != value.type) FailMismatch(value.type, type, TextOf(target).text, value.source);
    const Code array = TextOf(target);
    EmitLine(state, "{ " +
                        ArrayCppName(type, ArrayPlace::Inner, type.base == Base::Bool && AnyHandsOnBools()) +
                        " _from = " + TakenArray(value, ArrayPlace::Inner) + ";");
    Code loops;
    std::string indices;
    for (int k = 0; k < type.dims; ++k) {
        const std::string i = "_i" + std::to_string(k);
        const Code size =
            fixed ? Code(target.variable->sizes[static_cast<std::size_t>(k)]) : array + indices + ".size()";
        loops += "for(size_t " + i + " = 0; " + i + " < " + size + " && " + i + " < _from" + indices +
                 ".size(); ++" + i + ") ";
        indices += "[" + i + "]";
    }
    const std::string item = type.base == Base::Element ? "*" : "";
    EmitLine(state, loops + item + array + indices + " = " + item + "_from" + indices + "; }");
}

// "x += 1" is no assignment; the expression walk knows what to say about it.
void RefuseCompound(TokenSpan tokens, std::size_t sign) {
    const char before = tokens.SignAt(sign - 1);
    if (before == '+' || before == '-' || before == '*' || before == '/')
        TranslateExpression(tokens, ExprMode::Statement);
}

// The variable of a loop may be an item of something else.
bool IsLoopVariable(const State& state, const Expr& left) {
    if (VariableOf(left) == nullptr) return false;
    return std::any_of(state.blocks.begin(), state.blocks.end(),
                       [&left](const Block& block) { return block.braces.variable == left.variable->name; });
}

// An index, a call or an object in the target comes before the value, which C++ does not warrant.
bool FindsTargetFirst(const Expr& left, const Expr& right) {
    return VariableOf(left) == nullptr && IsLookUpSeen(left, &right);
}

// variable = value;
void EmitAssignment(State& state, const Expr& left, const Expr& right) {
    Code& line = FreshLine();
    const AwayWalks away = left.type.Is(Base::Element) ? AwayFromReplaced(*left.type.cls) : AwayWalks();
    BeginAway(line, away);
    Put(line, AsValue{left}, " = ");
    WriteAs(line, right, left.type);
    EndAway(line, away);
    line += ';';
    EmitLine(state, line);
}

// { auto&& __kvTarget = variable; __kvTarget = value; }
void EmitFoundAssignment(State& state, const Expr& left, const Expr& right) {
    const Code assigned = "__kvTarget = " + TextAs(right, left.type);
    const AwayWalks away = left.type.Is(Base::Element) ? AwayFromReplaced(*left.type.cls) : AwayWalks();
    EmitLine(state, "{ auto&& __kvTarget = ", AsValue{left}, "; ", Away(away, assigned), "; }");
}

void EmitSequenceAssignment(State& state, const Expr& left, const Expr& right) {
    const Code told = WalkCalls(left, "Leave", "; ");
    const Code assigned = ValueText(left) + " = " + TextAs(right, left.type);
    EmitLine(state, told, Away(AwayFrom(left, true), assigned), ";");
}

void TranslateAssignment(State& state, TokenSpan tokens, std::size_t sign) {
    RefuseCompound(tokens, sign);
    const TokenSpan target = tokens.Slice(0, sign);
    const TokenSpan assigned = tokens.From(sign + 1);
    CheckConstTarget(target);
    const Expr& left = TranslateExpression(target, ExprMode::Condition);
    CheckTarget(target, left);
    if (settings.verbose) GetExpressionType(assigned);
    Expr& right = TranslateExpression(assigned, ExprMode::Statement);
    right.source = assigned;
    if (left.type.IsArray() && right.type.IsArray()) {
        AssignArrayResult(state, left, right);
        return;
    }
    const bool chained = right.level == Level::Assignment;
    if (chained && !Assignable(left.type, right.type)) {
        ReportFatal("Type mismatch: Cannot assign " + InWords(right.type) + " to " + InWords(left.type) +
                    " variable '" + target.Text("") +
                    "'\nThe second '=' assigns, too. Put a comparison in parentheses.");
    }
    if (!Assignable(left.type, right.type))
        FailMismatch(right.type, left.type, target.Text(""), right.source);
    if (left.type.base == Base::Element) NeedClass(left.type.cls);
    if (left.type.sequence) return EmitSequenceAssignment(state, left, right);
    if (FindsTargetFirst(left, right)) return EmitFoundAssignment(state, left, right);
    if (settings.fastMode && left.type.Is(Base::String)) {
        const Code statement = AppendStatement(left, right, IsLoopVariable(state, left));
        if (!statement.text.empty()) return EmitLine(state, statement);
    }
    EmitAssignment(state, left, right);
}

bool IsKnownName(const std::string& name) {
    return FindCallable(name) != nullptr || FindVariable(name) != nullptr || IsClass(name) ||
           IsReservedKeyword(name);
}

const Hint wayToUse = {"A statement does something with it: n = 3, Print n, Draw(n)"};

void CheckFirstWord(TokenSpan tokens) {
    const std::string& name = tokens[0];
    if (!IsName(name))
        ReportFatal("Unexpected '" + name + "' at the start of a statement" + wayToUse, Tokens{name});
    const bool isLibraryName = Is(name, "std") && tokens.SignAt(1) == ':';
    if (IsKnownName(name) || isLibraryName || WasInEndedBlock(name)) return;
    ReportUnknownStatement("Identifier not found - " + name, Tokens{name}, SpellingHint(name));
}

// d->Bark() is about its arrow.
[[noreturn]] void FailAsValue(TokenSpan tokens) {
    const Wording message = "'" + tokens.Text("") + "' is a value, not a statement" + wayToUse;
    for (std::size_t i = 1; i + 1 < tokens.size(); ++i)
        if (tokens.SignAt(i) == '-' && tokens.SignAt(i + 1) == '>')
            ReportFatal(message, tokens.Slice(i, i + 2));
    ReportFatal(message);
}

void TranslateCall(State& state, TokenSpan tokens) {
    CheckFirstWord(tokens);
    if (Has(tokens.KeywordAt(0), trait::creates)) {
        EmitLine(state, TranslateExpression(tokens, ExprMode::Condition), ";");
        return;
    }
    Code& line = FreshLine();
    if (!TranslateCallStatement(tokens, line)) FailAsValue(tokens);
    line += ';';
    EmitLine(state, line);
}

// Draw a = b: a "=" in an argument compares, also where the call has no parentheses.
bool IsBareCall(TokenSpan tokens) {
    constexpr std::string_view continuing = "=\\.[(:";
    const char sign = tokens.SignAt(1);
    if (tokens.size() < 2 || (sign != '\0' && continuing.find(sign) != std::string_view::npos)) return false;
    return FindCallable(tokens.At(0)) != nullptr && FindVariable(tokens.At(0)) == nullptr;
}

}  // namespace

// place = value  |  call
//     KVL_n = value;
void TranslateAssignmentOrCall(State& state, TokenSpan tokens) {
    const std::size_t sign = IsBareCall(tokens) ? noToken : tokens.FindEquals();
    if (sign == noToken) {
        TranslateCall(state, tokens);
        return;
    }
    if (sign == 0) ReportFatal("Missing variable before '='");
    if (sign + 1 == tokens.size()) ReportFatal("Missing value after '='");
    TranslateAssignment(state, tokens, sign);
}

void CheckNullAssignment(TokenSpan tokens) {
    if (tokens.size() != 3 || tokens.SignAt(1) != '=' || tokens.KeywordAt(2) != Keyword::Null) return;
    const Variable* variable = FindVariable(tokens.At(0));
    if (variable == nullptr || !variable->type.Is(Base::Element)) return;
    ReportFatal("'" + tokens[0] +
                    "' is an Element (a value) - Null applies to Types, not Elements. Elements need no "
                    "cleanup; a Local "
                    "Element is freed automatically when it goes out of scope.",
                tokens.Slice(0, 1));
}
