// Built-in functions: keys, characters, conversions and mathematics.
#include <unordered_map>
#include <vector>

#include "base/report.h"
#include "base/settings.h"
#include "expressions/in_order.h"
#include "expressions/math_functions.h"
#include "expressions/order.h"
#include "expressions/walk.h"
#include "expressions/writer.h"
#include "lexer/lexer.h"

namespace {

// What a routine gets: the name as written and its argument.
using BuiltinRoutine = Expr& (*)(const std::string& name, Expr& argument);

Expr& Enclosed(const char* text, Expr& part, const char* closing, Base base) {
    Expr& expr = NewNode(ExprKind::Enclosed, Single(base), part);
    expr.text = text;
    expr.closing = closing;
    return expr;
}

[[noreturn]] void FailArgument(const std::string& name, const char* wanted, const Expr& got) {
    ReportFatal("'" + name + "' expects " + wanted + " but got " + KorvelName(got.type), got.source);
}

void RequireNumber(const std::string& name, const Expr& argument) {
    if (argument.type.IsKnown() && !argument.type.IsNumber()) FailArgument(name, "a number", argument);
}

Expr& Chr(const std::string& name, Expr& x) {
    RequireNumber(name, x);
    return Enclosed("std::string(1, static_cast<char>(", x, "))", Base::String);
}

Expr& Asc(const std::string& name, Expr& x) {
    if (x.type.IsKnown() && !x.type.Is(Base::String)) FailArgument(name, "a String", x);
    return NewNode(ExprKind::Asc, Single(Base::Int), x);
}

Expr& Convert(const std::string& name, Expr& x, const char* ofString, const char* ofNumber, Base to) {
    if (x.type.Is(Base::String)) return Enclosed(ofString, x, ")", to);
    if (x.type.IsKnown() && !x.type.IsNumber()) FailArgument(name, "a number or a String", x);
    return Enclosed(ofNumber, x, ")", to);
}

// g++ looks through conversions between numbers.
Expr& ToNumber(const std::string& name, Expr& x, const char* ofString, const char* ofNumber, Base to) {
    Expr& result = Convert(name, x, ofString, ofNumber, to);
    if (!x.type.Is(Base::String)) result.kind = ExprKind::Conversion;
    return result;
}

Expr& ToInt(const std::string& name, Expr& x) {
    return ToNumber(name, x, settings.lineMarks ? "__kvToInt(" : "std::stoi(", "static_cast<int>(",
                    Base::Int);
}

Expr& ToDouble(const std::string& name, Expr& x) {
    return ToNumber(name, x, settings.lineMarks ? "__kvToDouble(" : "std::stod(", "static_cast<double>(",
                    Base::Double);
}

Expr& ToString(const std::string& name, Expr& x) {
    return Convert(name, x, "std::string(", "std::to_string(", Base::String);
}

// All of one argument.
const std::unordered_map<std::string, BuiltinRoutine> builtins = {
    {"chr", Chr}, {"asc", Asc}, {"toint", ToInt}, {"todouble", ToDouble}, {"tostring", ToString},
};

// Type words that look like conversions, and what was meant.
const std::unordered_map<std::string, const char*> typeWords = {
    {"int", "ToInt"},
    {"double", "ToDouble"},
    {"string", "ToString"},
};

Expr& ParseGetKey(Walk& walk) {
    if (!walk.Match(')')) ReportFatal("GetKey() takes no parameters");
    Expr& expr = NewNode(ExprKind::GetKey, Single(Base::Int));
    expr.isCall = expr.effects = true;
    return expr;
}

Expr& Math(const MathFunction& function, const std::string& name, const PartList& arguments) {
    for (const Expr& argument : PartRange{arguments.First()}) RequireNumber(name, argument);
    Expr& call = NewNode(ExprKind::Math, Single(function.result));
    call.first = arguments.First();
    call.effects = arguments.HaveEffects();
    call.math = &function;
    return call;
}

// Some texts name an argument more than once. One inside the other they would double in length each time.
bool MayStandTwice(const Expr& argument, const Code& text) {
    return text.text.size() <= 500 && MayRepeat(argument);
}

void CheckCount(const std::string& name, int expected, std::size_t count) {
    if (static_cast<std::size_t>(expected) == count) return;
    ReportFatal(
        "'" + name + "' expects " + std::to_string(expected) + " argument(s), got " + std::to_string(count),
        Tokens{name});
}

}  // namespace

bool IsBuiltin(const std::string& lowerName) {
    return lowerName == "getkey" || builtins.count(lowerName) != 0 || typeWords.count(lowerName) != 0 ||
           FindMath(lowerName) != nullptr || IsSeqFunction(lowerName);
}

Expr& ParseBuiltin(Walk& walk, const std::string& lowerName) {
    const std::string& name = walk.tokens[walk.at - 1];
    const auto typeWord = typeWords.find(lowerName);
    if (typeWord != typeWords.end()) {
        ReportFatal("'" + name + "' is a type keyword and cannot be used as a function. Did you mean '" +
                        typeWord->second + "()'?",
                    Tokens{name});
    }
    if (IsSeqFunction(lowerName)) return ParseSeqFunction(walk, lowerName);
    walk.Take();
    if (lowerName == "getkey") return ParseGetKey(walk);

    const PartList arguments = ParseArguments(walk);
    const auto builtin = builtins.find(lowerName);
    const MathFunction* math = builtin == builtins.end() ? FindMath(lowerName) : nullptr;
    CheckCount(name, math != nullptr ? math->arguments : 1, arguments.size());
    for (const Expr& argument : PartRange{arguments.First()}) RequireValue(argument);
    return math != nullptr ? Math(*math, name, arguments) : builtin->second(name, *arguments.First());
}

void WriteEnclosed(Code& out, const Expr& expr) { Put(out, expr.text, *expr.first, expr.closing); }

// 0 when no key is waiting, the negated second code for extended keys. Outside of routines there is
// nothing to capture, and C++ does not take the attempt.
void WriteGetKey(Code& out, const Expr&) {
    out.lambda = true;
    out += "(_kbhit() ? ";
    out += InsideRoutine() ? "[&]" : "[]";
    out +=
        "() { int ch = _getch(); if(ch == 0 || ch == 224) { ch = _getch(); return -ch; } return ch; }() : 0)";
}

// The plain text evaluates its argument twice.
void WriteAsc(Code& out, const Expr& expr) {
    const Code x = TextOf(*expr.first);
    if (MayStandTwice(*expr.first, x))
        return Put(out, "(static_cast<int>(std::string(", x, ").length() > 0 ? std::string(", x,
                   ")[0] : 0))");
    out.lambda = true;
    out += "([](const std::string& s) { return s.length() > 0 ? static_cast<int>(s[0]) : 0; }(" + x + "))";
}

// In order:
//     [&]() -> double { double __kv0 = a; double __kv1 = b; return std::pow(...); }()
// Sgn and Frac name their argument more than once, which one that changes something must not be:
//     ([](double v) { return ...; }(a))
void WriteMath(Code& out, const Expr& expr) {
    InOrder inOrder;
    const ValueType real = Single(Base::Double);
    std::vector<Code> texts;
    for (const Expr& argument : PartsOf(expr)) {
        const Code text = TextOf(argument);
        texts.push_back(expr.ordered ? inOrder.Name(real, text) : text);
    }
    if (expr.math->repeats && !MayStandTwice(*expr.first, texts[0])) {
        out.lambda = true;
        out += "([](double v) { return ";
        WriteCall(out, *expr.math, {"v"});
        out += "; }(" + texts[0] + "))";
        return;
    }
    Code call;
    WriteCall(call, *expr.math, texts);
    if (expr.ordered)
        inOrder.Write(out, CppName(real), call);
    else
        out += call;
}
