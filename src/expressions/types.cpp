// How a typed expression becomes the text that C++ wants in its place.
#include "analysis/bool_arrays.h"
#include "base/report.h"
#include "expressions/walk.h"
#include "prelude/output.h"
#include "prelude/support.h"

namespace {

constexpr int mostDimensions = 3;

// The number of dimensions at the end of the names of the support routines; one-dimensional ones have none.
std::string Suffix(const ValueType& type) { return type.dims == 1 ? "" : std::to_string(type.dims); }

}  // namespace

std::string TakeOver(const Expr& expr, bool slots) {
    const bool bools = expr.type.base == Base::Bool && AnyHandsOnBools();
    if (expr.byValue && expr.type.base != Base::Element && !bools) return expr.text;
    if (expr.type.dims > mostDimensions) ReportFatal("Arrays of more than 3 dimensions cannot be handed on");
    if (bools) RequireSupport(Support::BoolArray);
    if (slots) RequireSupport(Support::ElementSlots);
    return (slots ? "__kvTakeSlots" : "__kvTakeArray") + Suffix(expr.type) + "(" + HandedBack(expr) + ")";
}

std::string HandedBack(const Expr& expr) {
    RequireSupport(Support::ArrayPassing);
    if (!expr.byValue) return expr.text;
    return (expr.type.base == Base::Element ? "__kvFreshSlots(" : "__kvFresh(") + expr.text + ")";
}

namespace {

std::string Passed(const Expr& expr) {
    if (expr.form == ArrayForm::Pointer) return expr.text;
    if (expr.type.dims > mostDimensions) ReportFatal("Arrays of more than 3 dimensions cannot be handed on");
    if (expr.form == ArrayForm::Fixed && expr.type.dims == 1) return expr.text;
    const bool fresh = expr.form == ArrayForm::Owned;
    const bool plain =
        expr.type.dims == 1 && !fresh && expr.type.base != Base::Element && expr.type.base != Base::Bool;
    if (plain && !expr.isCall) return expr.text + ".data()";
    RequireSupport(Support::ArrayPassing);
    if (expr.type.base == Base::Bool) RequireSupport(Support::BoolArray);
    if (expr.type.base == Base::Element) NeedClass(expr.type.cls);
    const std::string items = fresh ? TakeOver(expr, expr.type.base == Base::Element) : expr.text;
    return (expr.type.dims == 1 ? "__kvItems(" : "__kvRows(") + items + ")";
}

}  // namespace

void RequireValue(const Expr& expr) {
    if (expr.type.Is(Base::Void)) ReportFatal("A call without a result cannot be used as a value");
}

std::string ValueText(const Expr& expr) {
    if (!expr.slot) return expr.text;
    NeedClass(expr.type.cls);
    return "(*" + expr.text + ")";
}

std::string TextAs(const Expr& expr, const ValueType& to) {
    RequireValue(expr);
    if (expr.form == ArrayForm::Owned && to.IsArray()) return TakeOver(expr, false);
    return ValueText(expr);
}

std::string ArgumentText(const Expr& expr, const ValueType& parameter) {
    if (parameter.IsArray() && expr.type.IsArray()) return Passed(expr);
    // A fresh Sequence lives to the end of the statement, which is all that the reference needs.
    if (parameter.sequence && !expr.assignable) {
        return "const_cast<" + CppName(expr.type) + "&>(static_cast<const " + CppName(expr.type) + "&>(" +
               expr.text + "))";
    }
    return TextAs(expr, parameter);
}

void CheckAssignable(const Expr& target, const Expr& value) {
    RequireValue(value);
    if (target.isConst && target.variable) {
        ReportFatal("Cannot assign to const variable '" + target.variable->name + "'",
                    Tokens{target.variable->name});
    }
    if (!target.assignable && !target.slot)
        ReportFatal("What stands before '=' cannot be assigned to", target.source);
    if (target.type.IsArray() && value.type.IsArray() && !value.isCall) {
        ReportFatal(
            "Cannot assign arrays directly. Arrays are reference types.\n"
            "        Use a loop to copy elements, or return from a function for deep copy.");
    }
    if (Assignable(target.type, value.type)) return;
    ReportFatal("Type mismatch: Cannot assign " + CppName(value.type) + " to " + CppName(target.type) +
                    " variable '" + target.source.Text("") + "'" + ConversionHint(target.type, value.type),
                value.source);
}
