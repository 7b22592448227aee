// Built-in functions: keys, characters, conversions and mathematics.
#include <unordered_map>

#include "base/report.h"
#include "expressions/in_order.h"
#include "expressions/math_functions.h"
#include "expressions/walk.h"
#include "lexer/lexer.h"

namespace {

// What a routine gets: the name as written and its arguments, whose number has been checked.
using Arguments = std::vector<Expr>;
using BuiltinRoutine = Expr (*)(const std::string& name, const Arguments& arguments);

struct Builtin {
    int argumentCount;
    BuiltinRoutine routine;
};

Expr Result(std::string text, Base base) {
    Expr expr;
    expr.text = std::move(text);
    expr.type = Single(base);
    return expr;
}

[[noreturn]] void FailArgument(const std::string& name, const char* wanted, const Expr& got) {
    ReportFatal("'" + name + "' expects " + wanted + " but got " + KorvelName(got.type), got.source);
}

void RequireNumber(const std::string& name, const Expr& argument) {
    if (argument.type.IsKnown() && !argument.type.IsNumber()) FailArgument(name, "a number", argument);
}

Expr Chr(const std::string& name, const Arguments& arguments) {
    RequireNumber(name, arguments[0]);
    return Result("std::string(1, static_cast<char>(" + arguments[0].text + "))", Base::String);
}

// Some texts name an argument more than once. One inside the other they would double in length each time.
bool MayStandTwice(const Expr& argument) { return argument.text.size() <= 500 && MayRepeat(argument); }

// The plain text evaluates its argument twice.
Expr Asc(const std::string& name, const Arguments& arguments) {
    const Expr& x = arguments[0];
    if (x.type.IsKnown() && !x.type.Is(Base::String)) FailArgument(name, "a String", x);
    if (!MayStandTwice(x)) {
        ++lambdaCount;
        return Result("([](const std::string& s) { return s.length() > 0 ? static_cast<int>(s[0]) : 0; }(" +
                          x.text + "))",
                      Base::Int);
    }
    return Result(
        "(static_cast<int>(std::string(" + x.text + ").length() > 0 ? std::string(" + x.text + ")[0] : 0))",
        Base::Int);
}

Expr Convert(const std::string& name, const Expr& x, const char* ofString, Base to) {
    if (x.type.Is(Base::String)) return Result(std::string(ofString) + "(" + x.text + ")", to);
    if (x.type.IsKnown() && !x.type.IsNumber()) FailArgument(name, "a number or a String", x);
    Expr result = Result("static_cast<" + CppName(Single(to)) + ">(" + x.text + ")", to);
    result.turns = x.turns;
    result.leaps = x.leaps;
    result.pieces = x.pieces;
    return result;
}

Expr ToInt(const std::string& name, const Arguments& arguments) {
    return Convert(name, arguments[0], "std::stoi", Base::Int);
}

Expr ToDouble(const std::string& name, const Arguments& arguments) {
    return Convert(name, arguments[0], "std::stod", Base::Double);
}

Expr ToString(const std::string& name, const Arguments& arguments) {
    const Expr& x = arguments[0];
    if (x.type.Is(Base::String)) return Result("std::string(" + x.text + ")", Base::String);
    if (x.type.IsKnown() && !x.type.IsNumber()) FailArgument(name, "a number or a String", x);
    return Result("std::to_string(" + x.text + ")", Base::String);
}

const std::unordered_map<std::string, Builtin> builtins = {
    {"chr", {1, Chr}},           {"asc", {1, Asc}},           {"toint", {1, ToInt}},
    {"todouble", {1, ToDouble}}, {"tostring", {1, ToString}},
};

// Type words that look like conversions, and what was meant.
const std::unordered_map<std::string, const char*> typeWords = {
    {"int", "ToInt"},
    {"double", "ToDouble"},
    {"string", "ToString"},
};

// 0 when no key is waiting, the negated second code for extended keys. Outside of routines there is
// nothing to capture, and C++ does not take the attempt.
Expr ParseGetKey(Walk& walk) {
    if (!walk.Match(')')) ReportFatal("GetKey() takes no parameters");
    ++lambdaCount;
    ++callCount;
    const std::string capture = InsideRoutine() ? "[&]" : "[]";
    Expr expr = Result("(_kbhit() ? " + capture +
                           "() { int ch = _getch(); if(ch == 0 || ch == 224) { ch = _getch(); return -ch; } "
                           "return ch; }() : 0)",
                       Base::Int);
    expr.isCall = true;
    return expr;
}

// Sgn and Frac name their argument more than once, which one that changes something must not be.
bool RepeatsArgument(const std::string& lowerName) { return lowerName == "sgn" || lowerName == "frac"; }

// [&]() -> double { double __kv0 = a; double __kv1 = b; return std::pow(...); }()
std::string TextInOrder(const std::string& lowerName, const std::vector<std::string>& texts) {
    InOrder inOrder;
    const ValueType real = Single(Base::Double);
    const std::string a = inOrder.Name(real, texts[0]);
    const std::string b = inOrder.Name(real, texts[1]);
    return inOrder.Text(CppName(real), MathText(lowerName, {a, b}));
}

Expr Math(const std::string& lowerName, const std::string& name, const Arguments& arguments) {
    std::vector<std::string> texts;
    for (const Expr& argument : arguments) {
        RequireNumber(name, argument);
        texts.push_back(argument.text);
    }
    const Base type = lowerName == "sgn" ? Base::Int : Base::Double;
    if (OrderMatters(arguments)) return Result(TextInOrder(lowerName, texts), type);
    if (!RepeatsArgument(lowerName) || MayStandTwice(arguments[0]))
        return Result(MathText(lowerName, texts), type);
    ++lambdaCount;
    return Result("([](double v) { return " + MathText(lowerName, {"v"}) + "; }(" + texts[0] + "))", type);
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
           MathArgumentCount(lowerName) >= 0 || IsSeqFunction(lowerName);
}

Expr ParseBuiltin(Walk& walk, const std::string& lowerName) {
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

    const Arguments arguments = ParseArguments(walk);
    const auto builtin = builtins.find(lowerName);
    CheckCount(name, builtin == builtins.end() ? MathArgumentCount(lowerName) : builtin->second.argumentCount,
               arguments.size());
    for (const Expr& argument : arguments) RequireValue(argument);
    if (builtin == builtins.end()) return Math(lowerName, name, arguments);
    return builtin->second.routine(name, arguments);
}
