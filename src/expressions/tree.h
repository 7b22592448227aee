// Expressions as trees: plain nodes in an arena. The parser makes them and checks them (walk.h), order.h decides
// where their parts have to be worked out one after the other, and writer.h appends their C++ text to what comes out.
#pragma once

#include <deque>

#include "base/token_span.h"
#include "symbols/symbols.h"

// C++ precedence of the operator at the top of a text; a smaller number binds tighter.
enum class Level : unsigned char {
    Primary,
    Unary,
    Product,
    Sum,
    Shift,
    Relation,
    Equality,
    BitAnd,
    BitXor,
    BitOr,
    And,
    Or,
    Assignment
};

enum class ExprKind : unsigned char {
    Nothing,      // no tokens
    Fixed,        // `text`: True, Null, this
    Number,       // `word`, as C++ has it
    Text,         // `word`: a String literal without holes
    Holes,        // `word`: one with holes; the parts are what stands in them
    Parentheses,  // the part
    Name,         // `variable`, behind `text`
    Field,        // `variable` of the object that is the part
    Index,        // the array, called `word`, and its indices
    Call,         // `routine`, behind `text`; the arguments, and `object`
    Create,       // the arguments of `routine`, null for the generated constructor, of `type`'s class
    Instances,    // `text` of the class of `type`: First, Last
    Neighbour,    // `text` of the object: Before, After
    Insert,       // the object, `text` and the target
    GetKey,
    Enclosed,     // the part, behind `text` and before `closing`
    Conversion,   // of a number: the same
    Asc,          // of the part
    Math,         // `math` of the parts
    SeqFunction,  // `seqFunction` of the Sequence and perhaps a second part
    Library,      // a function of the C++ library, whose name is `word`, of the parts
    Sign,         // `text` before the part
    Operation,    // `operation` between two parts
    Quotient,     // the same: "/" and Mod checked in safe mode
    Remainder,    // the same: Mod of Doubles
    Elements,     // the same: "=" and "<>" of Elements
    Sum,          // the Strings that are joined
    Assignment,   // the target and the value
    Count,
};

struct BinaryOperator;
struct MathFunction;
struct SeqFunction;

struct Expr {
    ExprKind kind = ExprKind::Nothing;
    Level level = Level::Primary;
    ArrayForm form = ArrayForm::None;
    bool slot = false;        // an Element behind a pointer: members through "->", the value is (*text)
    bool literal = false;     // a bare string literal: const char* to C++
    bool assignable = false;  // may stand on the left of an assignment
    bool isCall = false;
    bool effects = false;  // runs code of the program
    bool byValue = false;  // an Owned array that comes as a std::vector, its Elements as values
    bool isConst = false;
    bool given = true;  // in the program where it stands; or else the default value of a parameter
    // Indices: the array may stand in a lambda by its own name ...
    bool sized = false;  // ... and has constants with its sizes
    // Decided by order.h:
    bool ordered = false;  // the parts are to be worked out one after the other, which C++ does not warrant
    bool named = false;    // ... and the object of the call before them
    bool hidden = false;   // behind __kvNow, where g++ does not look
    bool turns = false;    // a sum or joined bits, which g++ may turn round when it is negated
    bool upright = false;  // calls of the program's routines with "+", "-" and "*" between them
    bool leaps = false;    // g++ may work it out before what stands on its left
    unsigned from = 0, to = 0;  // of the parts of a sum those between braces; none when both are 0
    ValueType type;
    TokenSpan source;  // what it was made from; set for operands, arguments and objects
    const char* text = "";
    const char* closing = "";
    const Word* word = nullptr;
    const Variable* variable = nullptr;
    const Routine* routine = nullptr;
    const BinaryOperator* operation = nullptr;
    const MathFunction* math = nullptr;
    const SeqFunction* seqFunction = nullptr;
    Expr* object = nullptr;
    Expr* first = nullptr;  // the parts: the first one ...
    Expr* next = nullptr;   // ... and what stands behind this one among those of its parent
};

// A node that lasts until the statement ends.
Expr& NewNode(ExprKind kind);
Expr& NewNode(ExprKind kind, const ValueType& type);
// The same with its parts, which effects are handed up from.
Expr& NewNode(ExprKind kind, const ValueType& type, Expr& first);
Expr& NewNode(ExprKind kind, const ValueType& type, Expr& first, Expr& second);
// The statement has ended: the nodes made so far are used again.
void ForgetNodes();
// Those made while it lives are used again behind it.
class BorrowedNodes {
public:
    BorrowedNodes();
    ~BorrowedNodes();
    BorrowedNodes(const BorrowedNodes&) = delete;
    BorrowedNodes& operator=(const BorrowedNodes&) = delete;

private:
    std::size_t before;
};

// A list of parts under way.
class PartList {
public:
    void Add(Expr& part) {
        (last != nullptr ? last->next : head) = &part;
        last = &part;
        ++count;
        effects = effects || part.effects;
    }
    Expr* First() const { return head; }
    std::size_t size() const { return count; }
    bool HaveEffects() const { return effects; }

private:
    Expr* head = nullptr;
    Expr* last = nullptr;
    std::size_t count = 0;
    bool effects = false;
};

// Parts from one on, for range-for.
struct PartRange {
    Expr* part;

    struct Iterator {
        Expr* at;
        Expr& operator*() const { return *at; }
        Iterator& operator++() {
            at = at->next;
            return *this;
        }
        bool operator!=(Iterator other) const { return at != other.at; }
    };
    Iterator begin() const { return {part}; }
    Iterator end() const { return {nullptr}; }
    std::size_t size() const {
        std::size_t count = 0;
        for (const Expr* at = part; at != nullptr; at = at->next) ++count;
        return count;
    }
};
inline PartRange PartsOf(const Expr& expr) { return {expr.first}; }

// ---- questions

// The variable that the expression is, null when it is more; parentheses make a value of it.
inline const Variable* VariableOf(const Expr& expr) {
    return expr.kind == ExprKind::Name ? expr.variable : nullptr;
}
// The same for a Field.
inline const Variable* VariableOrField(const Expr& expr) {
    return expr.kind == ExprKind::Name || expr.kind == ExprKind::Field ? expr.variable : nullptr;
}
// The routine of which it is a call; null when it is anything else.
const Routine* RoutineOf(const Expr& expr);
// Whether both trees say the same: one place, unless something on the way to it has changed.
bool AreAlike(const Expr& a, const Expr& b);

// A copy of a tree that outlasts the statement; nothing may be asked about its sources.
class KeptTree {
public:
    explicit KeptTree(const Expr& root) { Copy(root); }
    KeptTree(KeptTree&&) = default;  // the nodes stay where they are
    KeptTree& operator=(KeptTree&&) = default;
    const Expr& Root() const { return nodes.front(); }

private:
    std::deque<Expr> nodes;

    Expr& Copy(const Expr& expr);
};
