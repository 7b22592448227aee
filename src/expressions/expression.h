// What statements do with expressions: the tokens become a tree (tree.h), which they ask questions, and then text.
#pragma once

#include <string>

#include "expressions/code.h"
#include "expressions/tree.h"

enum class ExprMode : unsigned char {
    Statement,  // "=" at the top level assigns
    Condition,  // "=" compares
    Print,      // "=" compares; an unknown name gives the message of Print
    Input,      // "=" compares; an unknown name gives the message of Input
};

// The tree of all tokens as one expression. Whatever is wrong ends the run. A token that begins with
// "//" ends the expression. No tokens give an empty text of type Void. The tree lasts until the statement ends.
Expr& TranslateExpression(TokenSpan tokens, ExprMode mode);
// The same; calls that give no value are refused.
Expr& TranslateValue(TokenSpan tokens, ExprMode mode);

// Appends the text of an expression, and the text where a value is wanted: an Element behind a pointer is
// dereferenced.
void Write(Code& out, const Expr& expr);
void WriteValue(Code& out, const Expr& expr);
// The same where C++ wants a value of type `to` in an initialiser, an assignment, an argument or a Return: pointer
// forms of arrays, literals, conversions. The caller has checked Assignable.
void WriteAs(Code& out, const Expr& expr, const ValueType& to);
// Appends the part of a sum of Strings as one.
void WritePart(Code& out, const Expr& part);
// Appends texts and expressions one after the other.
struct AsValue {
    const Expr& expr;
};
inline void Append(Code& out, const Expr& expr) { Write(out, expr); }
inline void Append(Code& out, AsValue value) { WriteValue(out, value.expr); }
template <class Text>
void Append(Code& out, const Text& text) {
    out += text;
}
template <class... Parts>
void Put(Code& out, const Parts&... parts) {
    (Append(out, parts), ...);
}
// As texts of their own.
Code TextOf(const Expr& expr);
Code ValueText(const Expr& expr);
Code TextAs(const Expr& expr, const ValueType& to);

// A fresh array as a vector that frees itself, and as the pointer that a Function hands back. `slots` when the
// vector owns the Elements in it.
Code TakeOver(const Expr& expr, bool slots);
Code HandedBack(const Expr& expr);

// C++ type of an expression ("unknown" without tokens), with the verbose notes of type inference.
std::string GetExpressionType(TokenSpan tokens);

// Type of an initialiser, without messages in verbose mode; used for untyped declarations.
ValueType InferType(TokenSpan tokens);

// A statement that no keyword claims: assignment checks done by the caller (statements/assignments).
// True when the tokens are a call that may stand as a statement; the C++ call is appended.
bool TranslateCallStatement(TokenSpan tokens, Code& out);

// Ends the run when an expression or a line to print has more parts than C++ compilers stand.
void LimitParts(std::size_t count);
