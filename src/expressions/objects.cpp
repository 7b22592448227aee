// Making objects and walking the list of a Type's objects.
#include "base/report.h"
#include "expressions/in_order.h"
#include "expressions/sequence_walks.h"
#include "lexer/lexer.h"
#include "prelude/output.h"
#include "prelude/program_uses.h"

namespace {

std::string Joined(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + text;
    return joined;
}

// new KVL_T(first, second) , for an Element KVL_T(first, second)
std::string ConstructorCall(const ClassInfo& cls, const std::vector<Expr>& arguments) {
    const Routine plain;  // the generated constructor, which stands beside one that needs arguments
    const Routine* own = FindMethod(cls, "constructor");
    if (own != nullptr && arguments.empty() && !NeedsNoArguments(*own)) own = nullptr;
    const Routine& constructor = own != nullptr ? *own : plain;
    if (own != nullptr) ++callCount;
    std::vector<std::string> texts =
        CheckedArguments("Method '" + cls.name + "::constructor'", constructor, arguments);
    const std::string name = (cls.isElement ? "" : "new ") + cls.cppName;
    if (!OrderMatters(arguments)) return name + "(" + Joined(texts) + ")";
    InOrder inOrder;
    NameArguments(inOrder, constructor, arguments, texts);
    return inOrder.Text(cls.cppName + (cls.isElement ? "" : "*"), name + "(" + Joined(texts) + ")");
}

Expr ObjectOf(const ClassInfo* cls, std::string text) {
    Expr expr;
    expr.text = std::move(text);
    expr.type = Single(Base::Object, cls);
    expr.isCall = true;
    expr.effects = true;
    ++callCount;
    return expr;
}

// First T , or First(T)
const ClassInfo* ParseTypeName(Walk& walk, const std::string& word) {
    const bool bracketed = walk.Match('(');
    const std::string& name = walk.Take();
    if (bracketed) walk.Expect(')');
    const ClassInfo* cls = FindClass(name);
    if (cls == nullptr || cls->isElement)
        ReportFatal("'" + word + "' expects the name of a Type, got '" + name + "'", Tokens{word});
    NeedClass(cls);
    return cls;
}

void RequireObject(const Expr& expr, const std::string& word) {
    if (!expr.type.IsKnown()) return;
    if (!expr.type.Is(Base::Object)) {
        ReportFatal("'" + word + "' expects an object of a Type but got " + KorvelName(expr.type),
                    Tokens{word});
    }
    NeedClass(expr.type.cls);
}

// The object of Before x and After x: x alone, or an expression in parentheses.
Expr ParseOrigin(Walk& walk) {
    if (walk.Match('(')) {
        Expr object = ParseValue(walk);
        walk.Expect(')');
        return object;
    }
    if (!IsIdentifier(walk.Peek())) FailUnexpected(walk);
    const std::string& name = walk.Peek();
    const std::size_t begin = walk.at;
    Expr object = ParseName(walk);
    object.source = walk.tokens.Slice(begin, walk.at);
    if (walk.PeekSign() == '[') object = ParseIndices(walk, object, name, object.variable);
    return object;
}

// What follows the object belongs to the neighbour: After x\hp is the hp of the neighbour.
Expr ParseNeighbour(Walk& walk, const std::string& word, const char* member) {
    Expr object = ParseOrigin(walk);
    RequireObject(object, word);
    if (object.level != Level::Primary) object.text = "( " + object.text + " )";
    return ObjectOf(object.type.cls, object.text + "->" + member + "()");
}

// What Insert moves, or where to: a call there has its arguments in parentheses, though Insert has none.
Expr ParseInserted(Walk& walk, const std::string& word) {
    const bool statement = walk.callStatement;
    walk.callStatement = false;
    Expr object = ParsePrimary(walk);
    walk.callStatement = statement;
    RequireObject(object, word);
    return object;
}

// Insert a After b
Expr ParseInsert(Walk& walk, const std::string& word) {
    Expr object = ParseInserted(walk, word);
    if (object.level != Level::Primary) object.text = "(" + object.text + ")";
    const Keyword place = walk.PeekKeyword();
    if (place != Keyword::Before && place != Keyword::After)
        ReportFatal("Insert expects: Insert a Before b, or Insert a After b");
    walk.Take();
    const Expr target = ParseInserted(walk, word);
    if (object.type != target.type && object.type.IsKnown() && target.type.IsKnown()) {
        ReportFatal("Insert expects two objects of one Type, got " + KorvelName(object.type) + " and " +
                    KorvelName(target.type));
    }
    programUses.inserts = true;
    Expr expr =
        ObjectOf(nullptr, object.text + (place == Keyword::After ? "->InsertAfter(" : "->InsertBefore(") +
                              target.text + ")");
    expr.type = Single(Base::Void);
    return expr;
}

}  // namespace

Expr ParseCreate(Walk& walk) {
    if (walk.Done()) ReportFatal("Expected class name after 'Create'");
    const std::string& name = walk.Take();
    const ClassInfo* cls = FindClass(name);
    if (cls == nullptr) {
        ReportFatal("Type '" + name + "' is not defined. Cannot create instance of non-existent Type",
                    Tokens{name});
    }
    NeedClass(cls);
    NoteConstruction(*cls);
    const std::vector<Expr> arguments = walk.Match('(') ? ParseArguments(walk) : std::vector<Expr>();
    const std::string call = ConstructorCall(*cls, arguments);
    if (!cls->isElement) {
        const bool used = walk.PeekSign() == '\\' || (walk.PeekSign() == '.' && IsIdentifier(walk.Peek(1)));
        Expr object = ObjectOf(cls, used ? "( " + call + " )" : call);
        if (!used) object.level = Level::Unary;
        return object;
    }
    Expr value = ObjectOf(cls, call);
    value.type = Single(Base::Element, cls);
    return value;
}

bool IsInstanceWord(Keyword word) {
    return word == Keyword::First || word == Keyword::Last || word == Keyword::Before ||
           word == Keyword::After || word == Keyword::Insert;
}

Expr ParseInstanceWord(Walk& walk, Keyword keyword) {
    const std::string& word = walk.tokens[walk.at - 1];
    if (keyword == Keyword::Insert) return ParseInsert(walk, word);
    if (keyword == Keyword::Before || keyword == Keyword::After)
        return ParseNeighbour(walk, word, keyword == Keyword::Before ? "Before" : "After");
    const ClassInfo* cls = ParseTypeName(walk, word);
    return ObjectOf(cls, cls->cppName + (keyword == Keyword::First ? "::First()" : "::Last()"));
}
