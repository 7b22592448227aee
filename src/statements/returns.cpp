// What comes out of Return of a local array in a routine that also has an array of Elements:
//     	int* KVL_a_copy = __kvNewArray<int>(KVL_a_size_0);
//     	for(int _i0 = 0; ...                       copies
//     	for(int _i0 = 0; ... delete KVL_items[_i0]  frees
//     return (KVL_a_copy);
// and of Return of a call in a debug build:
//     int _kvReturn = KVL_F();
//     	_kvDebugLeave();
//     return (_kvReturn);
#include "statements/returns.h"
#include "statements/handlers.h"

#include <algorithm>

#include "base/debugger.h"
#include "base/report.h"
#include "base/settings.h"
#include "expressions/constants.h"
#include "expressions/expression.h"
#include "lexer/lexer.h"
#include "prelude/support.h"
#include "statements/array_declarations.h"
#include "statements/array_loops.h"
#include "statements/array_results.h"
#include "statements/emit_lines.h"
#include "statements/end_of_file.h"
#include "statements/routines.h"
#include "symbols/own_names.h"
#include "symbols/scopes.h"

namespace {

constexpr char valueName[] = "_kvReturn";

bool OwnsObjects(const State& state) {
    return std::any_of(state.routine.localArrays.begin(), state.routine.localArrays.end(),
                       [](const LocalArray& array) { return array.ownsSlots; });
}

std::string RoutineSubject(const State& state) {
    const std::string kind = InMethod(state) ? "Method" : "Function";
    const std::string owner = InMethod(state) && state.cls ? state.cls->name + "::" : "";
    return kind + " '" + owner + state.routine.name + "'";
}

void CheckValue(const State& state, const ValueType& result, const Expr& value) {
    if (!value.type.IsKnown() || !result.IsKnown()) return;
    if (result.Is(Base::Void))
        ReportFatal(RoutineSubject(state) + " has no return type, so its Return cannot give a value",
                    value.source);
    const bool array = result.IsArray() || value.type.IsArray();
    if (array ? result == value.type : Assignable(result, value.type)) return;
    ReportFatal("Type mismatch: " + RoutineSubject(state) + " returns " + KorvelName(result) +
                    ", but its Return gives " + KorvelName(value.type) + ConversionHint(result, value.type),
                value.source);
}

void CheckNoValue(const State& state, const ValueType& result) {
    if (state.routine.isMain || result.Is(Base::Void) || !result.IsKnown()) return;
    ReportFatal(RoutineSubject(state) + " returns " + KorvelName(result) + ", so its Return needs a value");
}

// Sizes of an array as C++ texts. Rows of Fields and Globals all have the first one's size.
std::vector<Code> SizesOf(const Expr& value) {
    const Variable* variable = VariableOf(value);
    if (value.form == ArrayForm::Fixed && variable != nullptr)
        return {variable->sizes.begin(), variable->sizes.end()};
    const bool local = variable != nullptr && FindLocal(variable->name) == variable;
    std::vector<Code> sizes;
    Code row = TextOf(value), guard;
    for (int k = 0; k < value.type.dims; ++k) {
        sizes.push_back(local ? Code(SizeName(variable->cppName, k))
                              : "(" + guard + "static_cast<int>(" + row + ".size()))");
        guard += row + ".empty() ? 0 : ";
        row += "[0]";
    }
    return sizes;
}

// Declarations that take the array are checked against its sizes.
void RecordSizes(const State& state, const Expr& value) {
    auto& table = InMethod(state) ? state.cls->routines : symbols.functions;
    const Routine* declared = state.routine.declared;
    if (Routine* routine = declared != nullptr ? table.Find(declared->name) : nullptr)
        RecordResultSizes(*routine, value, !state.routine.hasReturn);
}

std::string CopyOfArray(State& state, const Expr& value) {
    if (value.form == ArrayForm::Pointer)
        ReportFatal(
            "An array parameter cannot be returned, because its size is not known here. Copy it into a Local "
            "array first.");
    if (value.type.dims > maxPassedDimensions)
        ReportFatal("An array that a Function returns can have at most " +
                    std::to_string(maxPassedDimensions) + " dimensions");
    RequireSupport(Support::ArrayPassing);
    const std::string copy =
        OwnName((VariableOf(value) != nullptr ? value.variable->cppName : "_kvArray") + "_copy");
    EmitLines(state, CopyLoops(value.type, TextOf(value), copy, SizesOf(value)));
    return copy;
}

bool IsCopied(const Expr& value) { return value.type.IsArray() && value.form != ArrayForm::Owned; }

// Whether freeing the arrays cannot change the value: no variable in it but a plain Local.
bool OutlivesArrays(const Expr& value) {
    if (value.literal || ConstantOf(value)) return true;
    const bool plain = value.type.IsNumber() || value.type.Is(Base::String);
    return plain && VariableOf(value) != nullptr && FindLocal(value.variable->name) == value.variable;
}

// The value may read the arrays that are freed, and for a debugger what it calls, and where it fails, stands under this
// routine.
bool IsWorkedOutBefore(const State& state, const Expr& value) {
    if (IsCopied(value)) return false;
    const bool mayFail = forDebugger && !OutlivesArrays(value);
    const bool seen = settings.debugMode && (value.effects || mayFail);
    return seen || (OwnsObjects(state) && !OutlivesArrays(value));
}

// The text to return, worked out before the routine is left where that matters.
Code ReturnedText(State& state, const ValueType& result, const Expr& value, bool before) {
    if (value.type.IsArray()) RecordSizes(state, value);
    if (IsCopied(value)) return CopyOfArray(state, value);
    const Code text = value.type.IsArray() ? HandedBack(value)
                      : result.IsKnown()   ? TextAs(value, result)
                                           : ValueText(value);
    if (!before) return text;
    EmitLine(state, ResultCppName(result) + " " + valueName + " = " + text + ";");
    return valueName;
}

void EmitLeaving(State& state) {
    EmitFreeLoops(state);
    EmitRoutineLeaving(state);
    if (!settings.debugMode) return;
    if (state.routine.isMain) EmitLine(state, "\t_kvDebugShutdown();");
    EmitLine(state, "\t_kvDebugLeave();");
}

void ReturnNothing(State& state, const ValueType& result) {
    CheckNoValue(state, result);
    EmitLeaving(state);
    EmitLine(state, state.routine.isMain ? "return 0;" : "return;");
}

void ReturnValue(State& state, const ValueType& result, TokenSpan tokens) {
    const Expr& value = TranslateValue(tokens, ExprMode::Condition);
    CheckValue(state, result, value);
    const bool before = IsWorkedOutBefore(state, value);
    const bool introducesNames = before || IsCopied(value);
    const bool braces = introducesNames && (state.routine.hasReturn || IsOpen(state, BlockKind::Select));
    if (braces) EmitLine(state, "{");
    const Code text = ReturnedText(state, result, value, before);
    EmitLeaving(state);
    const bool bare = state.place.inOneLineIf;
    EmitLine(state, bare ? "return " : "return (", text, bare ? ";" : ");");
    if (braces) EmitLine(state, "}");
}

ValueType ResultType(const State& state) {
    if (state.routine.isMain) return Single(Base::Int);
    return state.routine.declared ? state.routine.declared->result : Single(Base::Unknown);
}

}  // namespace

void EmitFreeLoops(State& state) {
    for (const LocalArray& array : state.routine.localArrays)
        if (array.ownsSlots) EmitLines(state, FreeLoops(*array.variable));
}

// Return [value]
//     return (value);
void TranslateReturn(State& state, TokenSpan tokens) {
    if (!InRoutine(state))
        ReportFatal("Unexpected 'return' token" + Hint{"It leaves a Function or Method; there is none here"},
                    UnclosedExtern(state));
    const ValueType result = ResultType(state);
    if (tokens.size() > 1)
        ReturnValue(state, result, tokens.From(1));
    else
        ReturnNothing(state, result);
    state.routine.hasReturn = true;
    state.routine.reachable = false;
}
