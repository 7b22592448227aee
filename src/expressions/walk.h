// The walk over the tokens of one expression, shared by the files of this folder.
// Every Parse routine begins at the walk's position and advances it behind what it made nodes of.
#pragma once

#include <cstddef>
#include <string>

#include "expressions/expression.h"

struct Walk {
    TokenSpan tokens;
    ExprMode mode = ExprMode::Condition;
    std::size_t at = 0;
    bool callStatement = false;  // a Function or Method may be called without parentheses
    // For rows of arrays, which only an argument for an array parameter may be:
    const Routine* callee = nullptr;            // the routine whose arguments come next
    std::size_t rowAt = std::string::npos;      // where such an argument begins
    std::size_t operandAt = std::string::npos;  // where the operand under way begins
    std::size_t operators = 0;                  // met so far

    Walk(TokenSpan t, ExprMode m) : tokens(t), mode(m) {}

    bool Done() const { return at >= tokens.size(); }
    const std::string& Peek(std::size_t ahead = 0) const { return tokens[at + ahead]; }
    char PeekSign(std::size_t ahead = 0) const { return tokens.SignAt(at + ahead); }
    Keyword PeekKeyword() const { return tokens.KeywordAt(at); }
    const std::string& Take() { return tokens[at++]; }
    TokenSpan Taken() const { return tokens.Slice(at - 1, at); }  // the last one
    TokenSpan Since(std::size_t begin) const { return tokens.Slice(begin, at); }
    bool Match(char sign) {
        if (PeekSign() != sign) return false;
        ++at;
        return true;
    }
    void Expect(char sign);  // ends the run when another token comes
};

// Whether the text goes into a routine: elsewhere a lambda has nothing to capture.
bool InsideRoutine();

// Counts how deep brackets, calls and signs are nested; too deep ends the run.
class DepthGuard {
public:
    DepthGuard();
    ~DepthGuard();
    DepthGuard(const DepthGuard&) = delete;
    DepthGuard& operator=(const DepthGuard&) = delete;
};

Expr& ParseValue(Walk& walk);  // any expression in which "=" compares
// What is parsed where a call has its parentheses, also in a call statement.
template <class Parse>
auto InBrackets(Walk& walk, Parse parse) -> decltype(parse(walk)) {
    const bool statement = walk.callStatement;
    walk.callStatement = false;
    auto&& parsed = parse(walk);
    walk.callStatement = statement;
    return static_cast<decltype(parse(walk))>(parsed);
}
Expr& ParseAssignment(Walk& walk);  // the same, but a "=" at its top level assigns
Expr& ParseUnary(Walk& walk);
Expr& ParsePrimary(Walk& walk);
// Of a value that stands by itself: a hexadecimal number that C++ has with a sign anyway, or that spreads the lack of one
// to nothing else, needs none.
void LeaveAsWritten(Expr& value);
// The digits of a hexadecimal number, as the source has them; empty for anything else.
std::string HexadecimalDigits(const Expr& value);
// The text of a hexadecimal number that goes by itself into something of the type, where it needs no sign; else null.
const Word* AsWritten(const Expr& value, const ValueType& to);
Expr& ParseString(Walk& walk);
// Goes on from the operand to what follows it: "\" members, "[" indices.
inline bool BeginsPostfix(char sign) { return sign == '\\' || sign == '.' || sign == '['; }
Expr& ParsePostfix(Walk& walk, Expr& operand, const Word& name);

// The arguments behind "(", up to and with the ")".
PartList ParseArguments(Walk& walk);
// The arguments of a call statement without parentheses: all that is left.
PartList ParseBareArguments(Walk& walk);

// A call of a routine whose name has been read; `prefix` is what stands before the routine's C++ name,
// `object` what a Method is called on, null without one.
Expr& ParseCall(Walk& walk, const Routine& routine, const char* prefix, Expr* object = nullptr);
// The accessor behind the text of the object; "this" and its accessor are written together.
const char* AccessorOf(const Expr& object, bool isThis);
// Checks the arguments and adds the defaults of those that are left out. `subject` as in "Function 'Draw'".
void CheckArguments(const std::string& subject, const Routine& routine, PartList& arguments);
std::string SubjectOf(const Routine& routine);
// Appends the arguments, named in order when there is somebody to name them.
void WriteArguments(Code& out, const Expr& call, const Routine& routine, const char* separator,
                    class InOrder* inOrder);
// End the run when an array has more dimensions than can be handed on: one that is taken over, a value where C++
// wants one of type `to`, an argument.
void CheckTakeOver(const Expr& expr);
void CheckConversion(const Expr& expr, const ValueType& to);
void CheckPassed(const Expr& expr, const ValueType& parameter);
// Arrays and Sequences are passed by reference; in order when somebody names where they are.
void WritePassed(Code& out, const Expr& expr, const ValueType& parameter);
void WritePassed(Code& out, const Expr& expr, const ValueType& parameter, class InOrder& inOrder);

// Ends the run unless `value` may be assigned to `target` (a variable, Field, array item ...).
void CheckAssignable(const Expr& target, const Expr& value);

// The indices behind an array, which the program calls `name`.
Expr& ParseIndices(Walk& walk, Expr& array, const Word& name);
// The C++ of the number of items in an array's, or a row's, first dimension; "-1" where nobody knows it.
std::string KnownSize(const Expr& array);

bool IsBuiltin(const std::string& lowerName);  // a name that means a built-in when "(" follows
Expr& ParseBuiltin(Walk& walk, const std::string& lowerName);
bool IsSeqFunction(const std::string& lowerName);
Expr& ParseSeqFunction(Walk& walk, const std::string& lowerName);
Expr& ParseLibraryName(Walk& walk);  // std:max(a, b)
Expr& ParseCreate(Walk& walk);
// First, Last, Before, After and Insert.
bool IsInstanceWord(Keyword word);
Expr& ParseInstanceWord(Walk& walk, Keyword word);

Expr& ParseName(Walk& walk);
bool IsIdentifier(const std::string& token);
[[noreturn]] void FailUnknownName(const Walk& walk, const std::string& name);
[[noreturn]] void FailUnexpected(const Walk& walk);
// What to say of an operand that stands right behind another one.
Hint MissingBefore(const Walk& walk);
// Ends the run when the expression is no value (Void, a Type without object ...).
void RequireValue(const Expr& expr);
// The Strings are more than a C++ compiler joins without using up all memory.
void LimitTexts(std::size_t count);

// The operands become parts of the operation. A sum of Strings that is the left one takes the right one in.
// `texts` are those of the sum under way.
Expr& Combine(Expr& left, const struct BinaryOperator& op, Expr& right, PartList& texts);
Expr& ApplyUnary(const struct UnaryOperator& op, Expr& operand);
