// What a name in an expression means: a word of the language, a call, a variable.
#include "base/report.h"
#include "base/settings.h"
#include "expressions/operators.h"
#include "expressions/walk.h"
#include "expressions/writer.h"
#include "lexer/lexer.h"
#include "prelude/output.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"
#include "symbols/uses.h"

namespace {

std::string Place() {
    return "(line " + std::to_string(settings.currentLine) + " in " + settings.currentFile + ")";
}

Expr& Fixed(const char* text, const ValueType& type) {
    Expr& expr = NewNode(ExprKind::Fixed, type);
    expr.text = text;
    return expr;
}

// The object of the running Method: always a pointer in C++.
Expr& This() {
    if (currentClass == nullptr) ReportFatal("'this' can only be used inside a Method");
    Expr& expr = Fixed("this", Single(currentClass->isElement ? Base::Element : Base::Object, currentClass));
    expr.slot = currentClass->isElement;
    return expr;
}

bool IsValueWord(Keyword word) { return Has(word, trait::value) && word != Keyword::Its; }

Expr& ValueOfWord(Keyword word) {
    if (word == Keyword::This) return This();
    if (word == Keyword::Null) return Fixed("nullptr", Single(Base::Null));
    return Fixed(word == Keyword::True ? "true" : "false", Single(Base::Bool));
}

void TraceLookup(const std::string& name, const Variable* found) {
    if (!settings.verbose) return;
    Say("DEBUG: Looking up variable '" + name + "'");
    if (found == nullptr) return;
    Say("DEBUG: Found variable '" + name + "' (scope " + std::to_string(BlockCount()) + ", branch " +
        std::to_string(localDefList.size()) + ", line " + std::to_string(found->line) + ")");
    Say("  Checking if in current scope chain...");
}

Expr& UseVariable(const Variable& variable) {
    Expr& expr = NewNode(ExprKind::Name, variable.type);
    // Names that stand for those of another place may be hidden where their text goes.
    if (FileLevelNames::InForce() && IsHidden(variable.name)) expr.text = "::";
    expr.form = variable.form;
    if (expr.type.IsArray() && expr.form == ArrayForm::None) expr.form = ArrayForm::Vector;
    expr.slot = variable.slot;
    expr.isConst = variable.isConst;
    expr.assignable = !expr.isConst;
    expr.variable = &variable;
    return expr;
}

// Where something nearer has the routine's name, C++ has to be told which one is meant.
const char* CallPrefix(const Routine& routine) {
    if (routine.isUserlib) return "";
    if (routine.owner != nullptr) return FindLocal(routine.name) != nullptr ? "this-> " : "";
    return IsHidden(routine.name) ? "::" : "";
}

// For those who write a(1).
std::string HowToGetItem(const std::string& name, const ValueType& type) {
    if (type.sequence) return "Its items are read with SeqGet(" + name + ", index)";
    return type.IsArray() ? "An item of an array is named in brackets: " + name + "[0]" : "";
}

// Calls without parentheses are statements; elsewhere the parentheses are missing.
Expr& ParseCallable(Walk& walk, const Word& name, bool called) {
    if (const Routine* routine = FindCallable(name)) return ParseCall(walk, *routine, CallPrefix(*routine));
    if (const Variable* variable = called ? FindVariable(name) : nullptr)
        ReportFatal("'" + name.text + "' is not a Function and cannot be called" +
                        Hint{HowToGetItem(name.text, variable->type)},
                    walk.Taken());
    FailUnknownName(walk, name.text);
}

}  // namespace

void WriteName(Code& out, const Expr& expr) { Put(out, expr.text, expr.variable->cppName); }

// The first level of the scopes is the program's own.
bool InsideRoutine() { return localDefList.size() > 1 && !FileLevelNames::InForce(); }

bool IsIdentifier(const std::string& token) { return !token.empty() && IsLetterByte(token[0]); }

[[noreturn]] static void FailClassAsValue(const ClassInfo& cls, TokenSpan word) {
    ReportFatal("'" + cls.name + "' is a Type and cannot be used as a value" +
                    Hint{cls.isElement ? "A variable of it is one from the beginning: Local p:" + cls.name
                                       : "Create " + cls.name + " makes an object of it"},
                word);
}

void FailUnknownName(const Walk& walk, const std::string& name) {
    const TokenSpan word = walk.Taken();
    const std::string lower = Lower(name);
    if (Has(FindKeyword(name), trait::operation)) ReportFatal("Missing operand before '" + name + "'", word);
    if (const ClassInfo* cls = FindClass(name)) FailClassAsValue(*cls, word);
    if (IsBuiltin(lower)) {
        const bool isCast = walk.at > 1 && walk.Peek() == ")" && walk.tokens.SignAt(walk.at - 2) == '(';
        ReportFatal("'" + name + "' is called with parentheses: " + name + "(...)" +
                        (isCast ? Hint{"The value stands in the brackets: " + name + "(3.5)"} : Hint()),
                    word);
    }
    if (IsReservedKeyword(name)) ReportFatal("Unexpected keyword '" + name + "' in an expression", word);
    if (walk.mode == ExprMode::Input)
        ReportUnknown("Variable '" + name + "' not found in Input statement", word, Sought::Value);
    if (walk.mode == ExprMode::Print) {
        const std::string message = "Variable '" + name + "' used out of scope in Print statement";
        ReportUnknown({message + " " + Place(), message}, word,
                      walk.PeekSign() == '(' ? Sought::Function : Sought::Value);
    }
    if (WasInEndedBlock(name)) {
        const std::string message = "Variable '" + name + "' used out of scope";
        ReportUnknown({message + " " + Place(), message}, word, Sought::Value);
    }
    if (walk.PeekSign() == '\\') ReportUnknown("Variable '" + name + "' is not defined", word, Sought::Value);
    ReportUnknown("Identifier not found - " + name, word,
                  walk.PeekSign() == '(' ? Sought::Function : Sought::Value);
}

Expr& ParseName(Walk& walk) {
    const Keyword keyword = walk.PeekKeyword();
    const Word& name = walk.tokens.At(walk.at++);
    const bool called = walk.PeekSign() == '(';
    if (called) {
        const std::string lower = Lower(name.text);
        if (IsBuiltin(lower)) return ParseBuiltin(walk, lower);
    }

    if (IsValueWord(keyword)) return ValueOfWord(keyword);
    if (called && FindCallable(name) != nullptr) return ParseCallable(walk, name, called);

    const Variable* variable = FindVariable(name);
    TraceLookup(name.text, variable);
    if (variable != nullptr && !called) {
        NoteUse(walk.Taken(), *variable);
        return UseVariable(*variable);
    }
    if (Has(keyword, trait::creates)) return ParseCreate(walk);
    if (IsInstanceWord(keyword)) return ParseInstanceWord(walk, keyword);
    return ParseCallable(walk, name, called);
}
