// What follows an operand: Fields, Methods and indices, to any depth.
#include "base/report.h"
#include "expressions/walk.h"
#include "prelude/output.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"
#include "symbols/uses.h"

namespace {

void RequireObject(const Expr& object, const std::string& name) {
    if (object.type.Is(Base::Object) || object.type.Is(Base::Element)) return;
    ReportFatal("Variable '" + name + "' is type " + CppName(object.type) +
                    ", not a Type/object. Cannot use field accessor '\\'",
                Tokens{name});
}

void RequireAccess(bool isPrivate, const ClassInfo& cls, const std::string& member) {
    if (!isPrivate || currentClass == &cls) return;
    ReportFatal("'" + member + "' is private in '" + cls.name + "' and cannot be used outside of it",
                Tokens{member});
}

Expr UseField(const Expr& object, const Variable& field) {
    Expr expr;
    expr.text = WithAccessor(object, object.text) + field.cppName;
    expr.type = field.type;
    if (expr.type.IsArray()) expr.form = ArrayForm::Vector;
    const bool lasting = object.type.base == Base::Object || object.slot || object.assignable;
    expr.assignable = lasting && !field.isConst;
    expr.isConst = field.isConst;
    expr.effects = object.effects;
    return expr;
}

Expr ParseMember(Walk& walk, const Expr& object, const std::string& name, const Variable*& array) {
    const std::string& accessor = walk.Take();
    if (!IsIdentifier(walk.Peek()))
        ReportFatal("Expected the name of a Field or Method after '" + accessor + "'");
    const std::string& member = walk.Take();
    if (!object.type.IsKnown())
        ReportUnknown("'" + member + "' does not exist in any accessible class", walk.Taken());
    RequireObject(object, name);
    const ClassInfo& cls = *object.type.cls;
    NeedClass(&cls);
    if (const Variable* field = FindField(cls, member)) {
        RequireAccess(field->isPrivate, cls, member);
        NoteUse(walk.Taken(), *field);
        array = field;
        return UseField(object, *field);
    }
    if (const Routine* method = FindMethod(cls, member)) {
        RequireAccess(method->isPrivate, cls, member);
        return ParseCall(walk, *method, "", &object);
    }
    ReportUnknown("Field or method '" + member + "' does not exist in class '" + cls.name + "'",
                  walk.Taken());
}

[[noreturn]] void FailIndexed(const Expr& expr, const std::string& name) {
    if (expr.type.sequence) {
        ReportFatal("'" + name + "' is a Sequence. Its items are read with SeqGet(" + name + ", index)",
                    Tokens{name});
    }
    ReportFatal("'" + name + "' is " + KorvelName(expr.type) + ", not an array, and cannot be indexed",
                Tokens{name});
}

}  // namespace

void ParsePostfix(Walk& walk, Expr& expr, const std::string& firstName) {
    const std::string* name = &firstName;
    const Variable* array = expr.variable;
    const std::size_t begin = walk.operandAt;
    const Token* first = expr.source.first;
    constexpr int mostLinks = 1000;
    for (int links = 0; BeginsPostfix(walk.PeekSign()); ++links) {
        if (links > mostLinks)
            ReportFatal("More than " + std::to_string(mostLinks) +
                        " Fields and Methods in a row. Give a part of them to a variable first");
        if (walk.PeekSign() != '[') {
            const std::string* member = &walk.Peek(1);
            array = nullptr;
            expr = ParseMember(walk, expr, *name, array);
            name = member;
        } else {
            if (expr.type.IsKnown() && !expr.type.IsArray()) FailIndexed(expr, *name);
            walk.operandAt = begin;
            expr = ParseIndices(walk, expr, *name, array);
            array = nullptr;
        }
        expr.source = {first, walk.tokens.first + walk.at};
        NoteType(expr.source, expr.type);
    }
}
