// Making objects and walking the list of a Type's objects.
#include "base/report.h"
#include "expressions/in_order.h"
#include "expressions/sequence_walks.h"
#include "expressions/walk.h"
#include "expressions/writer.h"
#include "lexer/lexer.h"
#include "prelude/output.h"
#include "prelude/program_uses.h"

namespace {

// The Type's own constructor; null when the generated one, which stands beside one that needs arguments, will do.
const Routine* ConstructorOf(const ClassInfo& cls, const PartList& arguments) {
    const Routine* own = FindMethod(cls, "constructor");
    return own != nullptr && arguments.size() == 0 && !NeedsNoArguments(*own) ? nullptr : own;
}

Expr& ObjectOf(ExprKind kind, const ClassInfo* cls, const char* text) {
    Expr& expr = NewNode(kind, Single(Base::Object, cls));
    expr.text = text;
    expr.isCall = expr.effects = true;
    return expr;
}

// First T , or First(T)
const ClassInfo* ParseTypeName(Walk& walk, const std::string& word) {
    const bool bracketed = walk.Match('(');
    const std::string& name = walk.Take();
    if (bracketed) walk.Expect(')');
    const ClassInfo* cls = FindClass(name);
    if (cls == nullptr || cls->isElement)
        ReportFatal("'" + word + "' expects the name of a Type, got '" + name + "'", Tokens{name},
                    Sought::Type);
    NeedClass(cls);
    return cls;
}

void RequireObject(const Expr& expr, const std::string& word) {
    if (!expr.type.IsKnown()) return;
    RequireValue(expr);
    if (!expr.type.Is(Base::Object)) {
        ReportFatal("'" + word + "' expects an object of a Type but got " + KorvelName(expr.type),
                    Tokens{word});
    }
    NeedClass(expr.type.cls);
}

// The object of Before x and After x: x alone, or an expression in parentheses.
Expr& ParseOrigin(Walk& walk) {
    if (walk.Match('(')) {
        Expr& object = ParseValue(walk);
        walk.Expect(')');
        return object;
    }
    if (!IsIdentifier(walk.Peek())) FailUnexpected(walk);
    const Word& name = walk.tokens.At(walk.at);
    const std::size_t begin = walk.at;
    Expr& object = ParseName(walk);
    object.source = walk.Since(begin);
    return walk.PeekSign() == '[' ? ParseIndices(walk, object, name) : object;
}

// What follows the object belongs to the neighbour: After x\hp is the hp of the neighbour.
Expr& ParseNeighbour(Walk& walk, const std::string& word, const char* member) {
    Expr& object = ParseOrigin(walk);
    RequireObject(object, word);
    Expr& neighbour = ObjectOf(ExprKind::Neighbour, object.type.cls, member);
    neighbour.first = &object;
    return neighbour;
}

// What Insert moves, or where to: a call there has its arguments in parentheses, though Insert has none.
Expr& ParseInserted(Walk& walk, const std::string& word) {
    Expr& object = InBrackets(walk, ParsePrimary);
    RequireObject(object, word);
    return object;
}

// Insert a After b
Expr& ParseInsert(Walk& walk, const std::string& word) {
    Expr& object = ParseInserted(walk, word);
    const Keyword place = walk.PeekKeyword();
    if (place != Keyword::Before && place != Keyword::After)
        ReportFatal("Insert expects: Insert a Before b, or Insert a After b");
    walk.Take();
    Expr& target = ParseInserted(walk, word);
    if (object.type != target.type && object.type.IsKnown() && target.type.IsKnown()) {
        ReportFatal("Insert expects two objects of one Type, got " + KorvelName(object.type) + " and " +
                    KorvelName(target.type));
    }
    NoteUse(&ProgramUses::inserts);
    Expr& expr =
        ObjectOf(ExprKind::Insert, nullptr, place == Keyword::After ? "InsertAfter" : "InsertBefore");
    expr.type = Single(Base::Void);
    expr.first = &object;
    object.next = &target;
    return expr;
}

}  // namespace

Expr& ParseCreate(Walk& walk) {
    if (walk.Done()) ReportFatal("Expected class name after 'Create'" + Hint{"Write Create TName"});
    const std::string& name = walk.Take();
    const ClassInfo* cls = FindClass(name);
    if (cls == nullptr) {
        ReportFatal("Type '" + name + "' is not defined. Cannot create instance of non-existent Type",
                    Tokens{name}, Sought::Type);
    }
    NeedClass(cls);
    NoteConstruction(*cls);
    PartList arguments = walk.Match('(') ? ParseArguments(walk) : PartList();
    const Routine* constructor = ConstructorOf(*cls, arguments);
    const Routine generated;
    CheckArguments("Method '" + cls->name + "::constructor'",
                   constructor != nullptr ? *constructor : generated, arguments);
    Expr& object = ObjectOf(ExprKind::Create, cls, "");
    object.routine = constructor;
    object.first = arguments.First();
    if (cls->isElement) {
        object.type = Single(Base::Element, cls);
    } else if (walk.PeekSign() == '\\' || (walk.PeekSign() == '.' && IsIdentifier(walk.Peek(1)))) {
        object.text = "( ";
        object.closing = " )";
    } else {
        object.level = Level::Unary;
    }
    return object;
}

// new KVL_T(first, second) , for an Element KVL_T(first, second)
void WriteCreate(Code& out, const Expr& expr) {
    const ClassInfo& cls = *expr.type.cls;
    InOrder inOrder;
    Code ordered;
    Code& call = expr.ordered ? ordered : out;
    out += expr.text;
    Put(call, cls.isElement ? "" : "new ", cls.cppName, "(");
    if (expr.routine != nullptr)
        WriteArguments(call, expr, *expr.routine, ", ", expr.ordered ? &inOrder : nullptr);
    call += ')';
    if (expr.ordered) inOrder.Write(out, cls.cppName + (cls.isElement ? "" : "*"), ordered);
    out += expr.closing;
}

// KVL_T::First()
void WriteInstances(Code& out, const Expr& expr) { Put(out, expr.type.cls->cppName, expr.text); }

// KVL_a->After()
void WriteNeighbour(Code& out, const Expr& expr) {
    const bool bare = expr.first->level == Level::Primary;
    Put(out, bare ? "" : "( ", *expr.first, bare ? "->" : " )->", expr.text, "()");
}

// KVL_a->InsertAfter(KVL_b)
void WriteInsert(Code& out, const Expr& expr) {
    const bool bare = expr.first->level == Level::Primary;
    Put(out, bare ? "" : "(", *expr.first, bare ? "->" : ")->", expr.text, "(", *expr.first->next, ")");
}

bool IsInstanceWord(Keyword word) {
    return word == Keyword::First || word == Keyword::Last || word == Keyword::Before ||
           word == Keyword::After || word == Keyword::Insert;
}

Expr& ParseInstanceWord(Walk& walk, Keyword keyword) {
    const std::string& word = walk.tokens[walk.at - 1];
    if (keyword == Keyword::Insert) return ParseInsert(walk, word);
    if (keyword == Keyword::Before || keyword == Keyword::After)
        return ParseNeighbour(walk, word, keyword == Keyword::Before ? "Before" : "After");
    const ClassInfo* cls = ParseTypeName(walk, word);
    return ObjectOf(ExprKind::Instances, cls, keyword == Keyword::First ? "::First()" : "::Last()");
}
