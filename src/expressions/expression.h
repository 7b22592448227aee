// The expression translator: one walk over the tokens that yields C++ text and its type.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "lexer/token_span.h"
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

struct TextSum;

struct Expr {
    std::string text;  // C++, no blanks at either end
    ValueType type;
    Level level = Level::Primary;
    ArrayForm form = ArrayForm::None;
    bool slot = false;        // an Element behind a pointer: members through "->", the value is (*text)
    bool literal = false;     // a bare string literal: const char* to C++
    bool assignable = false;  // may stand on the left of an assignment
    bool isCall = false;
    bool effects = false;  // runs code of the program; set for operands, arguments and what calls yield
    TokenSpan source;      // what it was made from; set for operands, arguments and objects
    std::shared_ptr<TextSum> sum;                 // a sum of Strings, and its parts
    std::shared_ptr<struct NumberPieces> pieces;  // of arithmetic that runs code (operand_order.h)
    bool turns = false;    // a sum of them or joined bits, which g++ may turn round when it is negated
    bool upright = false;  // calls of the program's routines with "+", "-" and "*" between them
    bool leaps = false;    // g++ may work it out before what stands on its left
    bool hidden = false;   // behind __kvNow, where g++ does not look
    bool byValue = false;  // an Owned array that comes as a std::vector, its Elements as values
    bool isConst = false;
    const Routine* routine = nullptr;    // when the expression is just a call of this routine
    const Variable* variable = nullptr;  // when the expression is just this variable
};

enum class ExprMode : unsigned char {
    Statement,  // "=" at the top level assigns
    Condition,  // "=" compares
    Print,      // "=" compares; an unknown name gives the message of Print
    Input,      // "=" compares; an unknown name gives the message of Input
};

// Translates all tokens as one expression. Whatever is wrong ends the run. A token that begins with
// "//" ends the expression. No tokens give an empty text of type Void.
Expr TranslateExpression(TokenSpan tokens, ExprMode mode);

// The text of an expression where a value is wanted: an Element behind a pointer is dereferenced.
std::string ValueText(const Expr& expr);

// The text of `expr` where C++ wants a value of type `to` in an initialiser, an assignment, an argument
// or a Return: pointer forms of arrays, literals, conversions. The caller has checked Assignable.
std::string TextAs(const Expr& expr, const ValueType& to);

// A fresh array as a vector that frees itself, and as the pointer that a Function hands back. `slots` when the
// vector owns the Elements in it.
std::string TakeOver(const Expr& expr, bool slots);
std::string HandedBack(const Expr& expr);

// C++ type of an expression ("unknown" without tokens), with the verbose notes of type inference.
std::string GetExpressionType(TokenSpan tokens);

// Type of an initialiser, without messages in verbose mode; used for untyped declarations.
ValueType InferType(TokenSpan tokens);

// A statement that no keyword claims: assignment checks done by the caller (statements/assignments).
// True when the tokens are a call that may stand as a statement; text gets the C++ call.
bool TranslateCallStatement(TokenSpan tokens, std::string& text);

// Ends the run when an expression or a line to print has more parts than C++ compilers stand.
void LimitParts(std::size_t count);

// Translates a string token (with its quotes): escapes and interpolation.
Expr TranslateString(const Word& token);
