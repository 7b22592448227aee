// How a typed expression becomes the text that C++ wants in its place.
#include "analysis/bool_arrays.h"
#include "base/report.h"
#include "expressions/in_order.h"
#include "expressions/walk.h"
#include "prelude/output.h"
#include "prelude/support.h"

namespace {

constexpr int mostDimensions = 3;

// What makes a pointer of the place where an array is.
struct Passing {
    const char* before;
    Code place;
    const char* behind;
};

// The number of dimensions at the end of the names of the support routines; one-dimensional ones have none.
std::string Suffix(const ValueType& type) { return type.dims == 1 ? "" : std::to_string(type.dims); }

bool HasBools(const Expr& expr) { return expr.type.base == Base::Bool && AnyHandsOnBools(); }

// Whether it comes as the vector that is wanted.
bool IsTakenAsItIs(const Expr& expr) {
    return expr.byValue && expr.type.base != Base::Element && !HasBools(expr);
}

}  // namespace

Code TakeOver(const Expr& expr, bool slots) {
    CheckTakeOver(expr);
    if (IsTakenAsItIs(expr)) return TextOf(expr);
    if (HasBools(expr)) RequireSupport(Support::BoolArray);
    if (slots) RequireSupport(Support::ElementSlots);
    return (slots ? "__kvTakeSlots" : "__kvTakeArray") + Suffix(expr.type) + "(" + HandedBack(expr) + ")";
}

Code HandedBack(const Expr& expr) {
    RequireSupport(Support::ArrayPassing);
    if (!expr.byValue) return TextOf(expr);
    return (expr.type.base == Base::Element ? "__kvFreshSlots(" : "__kvFresh(") + TextOf(expr) + ")";
}

namespace {

void RequireDimensions(const ValueType& type) {
    if (type.dims > mostDimensions) ReportFatal("Arrays of more than 3 dimensions cannot be handed on");
}

Passing PassingOfArray(const Expr& expr) {
    const ValueType& type = expr.type;
    const bool fresh = expr.form == ArrayForm::Owned;
    const bool plain = type.dims == 1 && !fresh && type.base != Base::Element && type.base != Base::Bool;
    const bool asItIs = expr.form == ArrayForm::Pointer || (expr.form == ArrayForm::Fixed && type.dims == 1);
    if (asItIs || (plain && !expr.isCall)) return {"", TextOf(expr), asItIs ? "" : ".data()"};
    RequireSupport(Support::ArrayPassing);
    if (type.base == Base::Bool) RequireSupport(Support::BoolArray);
    if (type.base == Base::Element) NeedClass(type.cls);
    return {type.dims == 1 ? "__kvItems(" : "__kvRows(",
            fresh ? TakeOver(expr, type.base == Base::Element) : TextOf(expr), ")"};
}

}  // namespace

void CheckTakeOver(const Expr& expr) {
    if (!IsTakenAsItIs(expr)) RequireDimensions(expr.type);
}

void CheckConversion(const Expr& expr, const ValueType& to) {
    RequireValue(expr);
    if (expr.form == ArrayForm::Owned && to.IsArray()) CheckTakeOver(expr);
}

void CheckPassed(const Expr& expr, const ValueType& parameter) {
    if (!parameter.IsArray() || !expr.type.IsArray())
        CheckConversion(expr, parameter);
    else if (expr.form != ArrayForm::Pointer)
        RequireDimensions(expr.type);
}

void WritePassed(Code& out, const Expr& expr, const ValueType& parameter) {
    if (parameter.IsArray() && expr.type.IsArray()) {
        const Passing passing = PassingOfArray(expr);
        return Put(out, passing.before, passing.place, passing.behind);
    }
    // A fresh Sequence lives to the end of the statement, which is all that the reference needs.
    if (!parameter.sequence || expr.assignable) return WriteAs(out, expr, parameter);
    const std::string type = CppName(expr.type);
    Put(out, "const_cast<", type, "&>(static_cast<const ", type, "&>(", expr, "))");
}

void WritePassed(Code& out, const Expr& expr, const ValueType& parameter, InOrder& inOrder) {
    if (VariableOf(expr) != nullptr) return WritePassed(out, expr, parameter);
    const Passing passing = parameter.IsArray() ? PassingOfArray(expr) : Passing{"", ValueText(expr), ""};
    Put(out, passing.before, inOrder.NamePlace(passing.place), passing.behind);
}

void RequireValue(const Expr& expr) {
    if (!expr.type.Is(Base::Void)) return;
    const Routine* routine = RoutineOf(expr);
    if (routine == nullptr) ReportFatal("This call gives no value", expr.source);
    ReportFatal("This call gives no value: " + SubjectOf(*routine) + " has no type for its result" +
                    Hint{"A type behind its name, as in Function " + routine->name +
                         ":Int, makes Return give a value"},
                expr.source);
}

void CheckAssignable(const Expr& target, const Expr& value) {
    RequireValue(value);
    if (target.isConst && VariableOf(target) != nullptr) {
        ReportFatal("Cannot assign to const variable '" + target.variable->name + "'",
                    Tokens{target.variable->name});
    }
    if (!target.assignable && !target.slot)
        ReportFatal("What stands before '=' cannot be assigned to" +
                        Hint{"'=' assigns here, too. Put a comparison in parentheses: found = (a = b)"},
                    target.source);
    if (target.type.IsArray() && value.type.IsArray() && !value.isCall) {
        ReportFatal(
            "Cannot assign arrays directly. Arrays are reference types.\n"
            "        Use a loop to copy elements, or return from a function for deep copy.");
    }
    if (Assignable(target.type, value.type)) return;
    ReportFatal("Type mismatch: Cannot assign " + InWords(value.type) + " to " + InWords(target.type) +
                    " variable '" + target.source.Text("") + "'" + ConversionHint(target.type, value.type),
                value.source);
}
