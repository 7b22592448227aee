// The walk over the tokens of one expression, shared by the files of this folder.
// Every Parse routine begins at the walk's position and advances it behind what it translated.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

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
    bool Match(char sign) {
        if (PeekSign() != sign) return false;
        ++at;
        return true;
    }
    void Expect(char sign);  // ends the run when another token comes
};

// How many lambdas were written so far: a text that holds one may not stand inside decltype.
extern std::size_t lambdaCount;
// How many calls so far may do more than yield a value; where two stand side by side their order counts.
extern std::size_t callCount;

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

Expr ParseValue(Walk& walk);       // any expression in which "=" compares
Expr ParseAssignment(Walk& walk);  // the same, but a "=" at its top level assigns
Expr ParseUnary(Walk& walk);
Expr ParsePrimary(Walk& walk);
// Goes on from the operand to what follows it: "\" members, "[" indices.
inline bool BeginsPostfix(char sign) { return sign == '\\' || sign == '.' || sign == '['; }
void ParsePostfix(Walk& walk, Expr& expr, const std::string& name);

// The arguments behind "(", up to and with the ")".
std::vector<Expr> ParseArguments(Walk& walk);
// Whether what follows an unread name in a call statement can be its arguments: no member, no index.
bool TakesBareArguments(const Walk& walk);
// The arguments of a call statement without parentheses: all that is left.
std::vector<Expr> ParseBareArguments(Walk& walk);

// A call of a routine whose name has been read; `prefix` is what stands before the routine's C++ name,
// `object` what a Method is called on, null without one.
Expr ParseCall(Walk& walk, const Routine& routine, const std::string& prefix, const Expr* object = nullptr);
// The text, which stands for the object, with the accessor behind it; "this" and its accessor are written
// together.
std::string WithAccessor(const Expr& object, const std::string& text);
// The texts of the arguments, defaults written out. `subject` as in "Function 'Draw'".
std::vector<std::string> CheckedArguments(const std::string& subject, const Routine& routine,
                                          const std::vector<Expr>& arguments);
std::string SubjectOf(const Routine& routine);
// The text of an argument for a parameter of the type; arrays and Sequences are passed by reference.
std::string ArgumentText(const Expr& expr, const ValueType& parameter);

// Ends the run unless `value` may be assigned to `target` (a variable, Field, array item ...).
void CheckAssignable(const Expr& target, const Expr& value);

// The indices behind an array; `variable` is the variable or Field that it is, null for other expressions.
Expr ParseIndices(Walk& walk, const Expr& array, const std::string& name, const Variable* variable);

bool IsBuiltin(const std::string& lowerName);  // a name that means a built-in when "(" follows
Expr ParseBuiltin(Walk& walk, const std::string& lowerName);
bool IsSeqFunction(const std::string& lowerName);
Expr ParseSeqFunction(Walk& walk, const std::string& lowerName);
Expr ParseLibraryName(Walk& walk);  // std:max(a, b)
Expr ParseCreate(Walk& walk);
// First, Last, Before, After and Insert.
bool IsInstanceWord(Keyword word);
Expr ParseInstanceWord(Walk& walk, Keyword word);

Expr ParseName(Walk& walk);
bool IsIdentifier(const std::string& token);
[[noreturn]] void FailUnknownName(const Walk& walk, const std::string& name);
[[noreturn]] void FailUnexpected(const Walk& walk);
// Ends the run when the expression is no value (Void, a Type without object ...).
void RequireValue(const Expr& expr);

// Whether the text of the operand may be evaluated more than once.
bool MayRepeat(const Expr& operand);

// The operands are used up. A sum of Strings stays open: further ones may join it before CloseSum gives it its text.
Expr Combine(Expr& left, const struct BinaryOperator& op, Expr& right);
void CloseSum(Expr& sum);
Expr ApplyUnary(const struct UnaryOperator& op, Expr& operand);
