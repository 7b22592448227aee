// What follows an operand: Fields, Methods and indices, to any depth.
#include "base/report.h"
#include "expressions/walk.h"
#include "expressions/writer.h"
#include "prelude/output.h"
#include "symbols/foreign_words.h"
#include "symbols/identifiers.h"
#include "symbols/module_names.h"
#include "symbols/scopes.h"
#include "symbols/type_reader.h"
#include "symbols/uses.h"

namespace {

// A Function of the language, or of a module that may have to be included, which does what a member does elsewhere.
Hint UseInstead(const std::string& function, const std::string& arguments) {
    const std::string include = IncludeFor(function);
    return Hint{"Write " + function + "(" + arguments + ")" +
                (include.empty() ? "" : ". It comes with " + include)};
}

// For those who write s\Length, and map\Get(key)\name.
Hint HintAtMember(const ValueType& type, const std::string& name, const std::string& member) {
    if (type.sequence)
        return Hint{"What can be done with a Sequence begins with Seq: SeqAdd " + name + ", 1"};
    if (type.IsArray()) return Hint{"An array has no members, and keeps the size that it was declared with"};
    if (!type.Is(Base::String)) return HintAtAnyObject(type);
    const std::string function = FunctionCalledElsewhere(member);
    return function.empty() ? Hint{} : UseInstead(function, name);
}

void RequireObject(const Expr& object, const std::string& name, const std::string& member) {
    if (object.type.Is(Base::Object) || object.type.Is(Base::Element)) return;
    ReportFatal("Variable '" + name + "' is type " + InWords(object.type) +
                    ", not a Type/object. Cannot use field accessor '\\'" +
                    HintAtMember(object.type, name, member),
                Tokens{name});
}

void RequireAccess(bool isPrivate, const ClassInfo& cls, const std::string& member) {
    if (!isPrivate || currentClass == &cls) return;
    ReportFatal("'" + member + "' is private in '" + cls.name + "' and cannot be used outside of it",
                Tokens{member});
}

Expr& UseField(Expr& object, const Variable& field) {
    Expr& expr = NewNode(ExprKind::Field, field.type, object);
    expr.variable = &field;
    if (expr.type.IsArray()) expr.form = ArrayForm::Vector;
    const bool lasting = object.type.base == Base::Object || object.slot || object.assignable;
    expr.assignable = lasting && !field.isConst;
    expr.isConst = field.isConst;
    return expr;
}

Expr& ParseMember(Walk& walk, Expr& object, const std::string& name) {
    const std::string& accessor = walk.Take();
    if (!IsIdentifier(walk.Peek()))
        ReportFatal("Expected the name of a Field or Method after '" + accessor + "'" +
                        Hint{"Whole numbers are divided with '/', texts are joined with '+'"},
                    walk.Taken());
    const Word& word = walk.tokens.At(walk.at++);
    const std::string& member = word.text;
    if (!object.type.IsKnown())
        ReportUnknown("'" + member + "' does not exist in any accessible class", walk.Taken());
    RequireObject(object, name, member);
    const ClassInfo& cls = *object.type.cls;
    NeedClass(&cls);
    if (const Variable* field = FindField(cls, word)) {
        RequireAccess(field->isPrivate, cls, member);
        NoteUse(walk.Taken(), *field);
        return UseField(object, *field);
    }
    if (const Routine* method = FindMethod(cls, word)) {
        RequireAccess(method->isPrivate, cls, member);
        return ParseCall(walk, *method, "", &object);
    }
    ReportUnknown("Field or method '" + member + "' does not exist in class '" + cls.name + "'", walk.Taken(),
                  Sought::Member, &cls);
}

// For those who write text[0] or map["a"].
Hint HintAtIndex(const ValueType& type, const std::string& name) {
    if (type.Is(Base::String)) return UseInstead("CharAt", name + ", 0");
    const ClassInfo* cls = type.cls;
    const bool isMap = cls != nullptr && cls->routines.Has("Get") && cls->routines.Has("Set");
    return Hint{isMap ? "Write " + name + "\\Get(key) and " + name + "\\Set(key, value)" : ""};
}

[[noreturn]] void FailIndexed(const Expr& expr, const std::string& name) {
    if (expr.type.sequence) {
        ReportFatal("'" + name + "' is a Sequence. Its items are read with SeqGet(" + name + ", index)" +
                        Hint{"SeqSet " + name + ", 0, 3 changes one"},
                    Tokens{name});
    }
    ReportFatal("'" + name + "' is " + KorvelName(expr.type) + ", not an array, and cannot be indexed" +
                    HintAtIndex(expr.type, name),
                Tokens{name});
}

}  // namespace

const char* AccessorOf(const Expr& object, bool isThis) {
    const bool pointer = object.type.base != Base::Element || object.slot;
    if (isThis) return pointer ? "-> " : ". ";
    return pointer ? " -> " : " . ";
}

void WriteField(Code& out, const Expr& expr) {
    const Expr& object = *expr.first;
    Put(out, object, AccessorOf(object, object.kind == ExprKind::Fixed), expr.variable->cppName);
}

Expr& ParsePostfix(Walk& walk, Expr& operand, const Word& firstName) {
    Expr* expr = &operand;
    const Word* name = &firstName;
    const std::size_t begin = walk.operandAt;
    const Token* first = expr->source.first;
    constexpr int mostLinks = 1000;
    for (int links = 0; BeginsPostfix(walk.PeekSign()); ++links) {
        if (links > mostLinks)
            ReportFatal("More than " + std::to_string(mostLinks) +
                        " Fields and Methods in a row. Give a part of them to a variable first");
        if (walk.PeekSign() != '[') {
            const Word* member = &walk.tokens.At(walk.at + 1);
            expr = &ParseMember(walk, *expr, name->text);
            name = member;
        } else {
            if (expr->type.IsKnown() && !expr->type.IsArray()) FailIndexed(*expr, name->text);
            walk.operandAt = begin;
            expr = &ParseIndices(walk, *expr, *name);
        }
        expr->source = {first, walk.tokens.first + walk.at};
        NoteType(expr->source, expr->type);
    }
    return *expr;
}
