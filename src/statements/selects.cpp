//     switch (KVL_n)                  switch (__kvSelect(KVL_name, {"one", "two"}))
//     {                               {
//     case 1:                         case 0:
//     case 2:                         case 1:
//         ...                             ...
//     default :                       default :
//     }                               }
// C++ switches over integers only, so a Select over text or Doubles switches over the index of the
// label that is equal to the subject.
#include "statements/selects.h"
#include "statements/handlers.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <memory>
#include <utility>

#include "base/report.h"
#include "expressions/constants.h"
#include "prelude/support.h"
#include "statements/words.h"
#include "symbols/scopes.h"

namespace {

OpenSelect& InnermostSelect(State& state, const std::string& keyword) {
    const auto found = std::find_if(state.blocks.rbegin(), state.blocks.rend(),
                                    [](const Block& block) { return block.braces.select != nullptr; });
    if (found == state.blocks.rend() || state.blocks.size() <= state.place.firstBlock)
        ReportFatal("'" + keyword + "' without an open Select block");
    if (found != state.blocks.rbegin())
        ReportFatal("'" + keyword + "' belongs to the Select of line " + std::to_string(found->braces.line) +
                    ", but the block that starts at line " + std::to_string(state.blocks.back().braces.line) +
                    " is still open");
    return *found->braces.select;
}

// A further label must not jump past the Locals of the case before it.
void EndCase(State& state, OpenSelect& select) {
    if (!select.declares) return;
    select.declares = false;
    PopBlock();
    state.routine.slots[select.localsSlot].text = select.localsIndent + "{\n";
    EmitLine(state, "}");
}

void EmitLabel(State& state, OpenSelect& select, const std::string& text) {
    EmitLine(state, text);
    BeginLabel(state);
    select.labelSeen = state.routine.bareLabel = true;
}

void CheckLabelType(const OpenSelect& select, const Expr& label) {
    if (!label.type.IsKnown() || !select.subject.IsKnown()) return;
    bool fits = label.type.IsNumber();
    if (select.subject.Is(Base::String))
        fits = label.type.Is(Base::String);
    else if (select.subject.IsInteger())
        fits = label.type.IsInteger();
    if (!fits)
        ReportFatal("Type mismatch: Case label is " + KorvelName(label.type) + ", but the Select is over " +
                        KorvelName(select.subject),
                    label.source);
}

// A spelling that is the same for equal values.
std::string LabelKey(const OpenSelect& select, const ConstantValue& value) {
    if (value.kind == ConstantValue::Kind::Text) return "\"" + value.text;
    if (select.subject.Is(Base::Double)) {
        char exact[64];
        std::snprintf(exact, sizeof exact, "%a", value.AsReal() + 0.0);
        return exact;
    }
    return std::to_string(value.integer);
}

std::string Spelling(TokenSpan tokens) {
    std::string text;
    for (const std::string& token : tokens) text += (text.empty() || Is(token, "(") ? "" : " ") + token;
    return text;
}

// C++ takes no label that the subject cannot hold, which does not match anyway.
bool IsOutOfReach(const OpenSelect& select, const ConstantValue& label) {
    const bool narrow = select.subject.IsInteger() && !select.subject.Is(Base::Long);
    return narrow && (label.integer < INT_MIN || label.integer > INT_MAX);
}

// Case 1 Or 2 , Case n > 5
// A Select over Bools has such labels, too; over numbers they are meant as something else.
bool IsCondition(const OpenSelect& select, const Expr& label) {
    if (label.kind == ExprKind::Parentheses) return IsCondition(select, *label.first);
    const bool isWorkedOut = label.kind == ExprKind::Operation || label.kind == ExprKind::Sign;
    return isWorkedOut && label.type.Is(Base::Bool) && !select.subject.Is(Base::Bool);
}

// Checks one label and gives its C++ text; empty for one that never matches.
Code LabelText(OpenSelect& select, TokenSpan tokens) {
    if (tokens.empty()) ReportFatal("Expected a value after 'Case'");
    const Expr& label = TranslateValue(tokens, ExprMode::Statement);
    CheckLabelType(select, label);
    const auto value = IsCondition(select, label) ? std::nullopt : ConstantOf(label);
    if (!value) {
        // The index form compares at run time, so any Const will do there.
        const bool constant = select.byIndex && (label.isConst || label.kind == ExprKind::Holes);
        if (!constant)
            ReportUnknown("A Case label must be a constant, '" + Spelling(tokens) + "' is not" +
                              Hint{"A Case has literals and Consts. For all else write If"},
                          tokens);
        return ValueText(label);
    }
    if (!select.labels.insert(LabelKey(select, *value)).second)
        ReportFatal("Duplicate Case label: " + Spelling(tokens), tokens);
    if (IsOutOfReach(select, *value)) return {};
    if (select.subject.Is(Base::Double) && !label.type.Is(Base::Double))
        return "(double)" + GuardedText(label, Level::Unary);
    if (value->kind == ConstantValue::Kind::Integer && !value->toCpp) return std::to_string(value->integer);
    return ValueText(label);
}

// Completes the switch line now that all labels are known.
void CompleteSwitch(State& state, const OpenSelect& select) {
    if (!select.byIndex) return;
    RequireSupport(Support::StringSelect);
    state.routine.slots[select.labelsSlot].text = "{" + select.labelTexts + "}";
}

}  // namespace

// Select value
void TranslateSelect(State& state, TokenSpan tokens) {
    if (tokens.size() < 2) ReportFatal("Expected a value after 'Select'");
    const Expr& subject = TranslateValue(tokens.From(1), ExprMode::Statement);
    auto opened = std::make_unique<OpenSelect>();
    OpenSelect& select = *opened;
    select.subject = subject.type;
    select.byIndex = subject.type.Is(Base::String) || subject.type.Is(Base::Double);
    if (subject.type.IsKnown() && !subject.type.IsNumber() && !select.byIndex)
        ReportFatal("Select works on numbers and Strings, got " + KorvelName(subject.type), tokens.From(1));
    OpenNewBlock(state, BlockKind::Select).select = std::move(opened);
    if (select.byIndex)
        select.labelsSlot =
            EmitSlottedLine(state, {"switch (__kvSelect(" + ValueText(subject) + ", ", "))"}).front();
    else
        EmitLine(state, "switch (" + ValueText(subject) + ")");
    EmitLine(state, "{");
}

// Case label , ...
//     case 1:
// No break follows: a case runs on into the next one unless it Exits.
void TranslateCase(State& state, TokenSpan tokens) {
    OpenSelect& select = InnermostSelect(state, "Case");
    if (tokens.size() < 2) ReportFatal("Expected a value after 'Case'");
    if (tokens.KeywordAt(1) == Keyword::Else)
        ReportFatal("Syntax error: Use 'Default' instead of 'Case Else'");
    EndCase(state, select);
    for (TokenSpan part : tokens.From(1).SplitAt(',')) {
        std::string label = LabelText(select, part).text;
        if (select.byIndex) {
            select.labelTexts += (select.labelTexts.empty() ? "" : ", ") + label;
            label = std::to_string(select.labelCount++);
        }
        EmitLabel(state, select, label.empty() ? ";" : "case " + label + ":");
    }
}

// Default
void TranslateDefault(State& state, TokenSpan tokens) {
    OpenSelect& select = InnermostSelect(state, "Default");
    RefuseMore(tokens, 1);
    Braces& braces = state.blocks.back().braces;
    if (braces.elseSeen)
        ReportFatal("The Select that starts at line " + std::to_string(braces.line) +
                    " has a Default already");
    EndCase(state, select);
    EmitLabel(state, select, "default :");
    braces.elseSeen = true;
}

// EndSelect
void TranslateEndSelect(State& state, TokenSpan tokens) {
    RefuseMore(tokens, 1);
    std::optional<Block> closed = CloseBlock(state, BlockKind::Select, "EndSelect");
    if (!closed) return;
    PopScopeOf(closed->braces);
    EmitClosing(state, closed->braces);
}

void FinishSelect(State& state, OpenSelect& select) {
    if (select.declares) PopBlock();
    // C++11 wants a statement behind a label; comments are none.
    if (state.routine.bareLabel) EmitLine(state, ";");
    CompleteSwitch(state, select);
}

void PrepareInSelect(State& state, Keyword keyword) {
    if (!InRoutine(state) || !InnermostIs(state, BlockKind::Select)) return;
    if (keyword == Keyword::Case || keyword == Keyword::Default || keyword == Keyword::EndSelect) return;
    OpenSelect& select = *state.blocks.back().braces.select;
    if (!select.labelSeen && !select.warned)
        Warn("before-case", "What stands between 'Select' and its first 'Case' never runs");
    select.warned = !select.labelSeen;
    const bool mayDeclare = keyword == Keyword::Local || keyword == Keyword::Include;
    if (!mayDeclare || select.declares) return;
    select.declares = true;
    select.localsSlot = OpenSlot(state);
    select.localsIndent.assign(static_cast<std::size_t>(state.place.indent), '\t');
    PushBlock();
}
