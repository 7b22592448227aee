// std:max(a, b): functions of the C++ library, as far as numbers and Strings get along with them.
#include <sstream>
#include <string_view>
#include <unordered_map>

#include "base/report.h"
#include "expressions/in_order.h"
#include "expressions/walk.h"
#include "expressions/writer.h"
#include "prelude/program_uses.h"

namespace {

enum class Takes : unsigned char {
    Numbers,
    Text,   // one String
    Same,   // one number, and gives one of its type
    Alike,  // two numbers or two Strings, and gives one of them
    Zero,   // 0 or Null, for a place that nothing is to be written to
};

struct Group {
    const char* names;
    std::size_t arguments;
    Takes takes;
    Base result;
};

const Group groups[] = {
    {"max min", 2, Takes::Alike, Base::Int},
    {"abs", 1, Takes::Same, Base::Int},
    {"fabs sqrt cbrt exp exp2 expm1 log log2 log10 log1p sin cos tan asin acos atan sinh cosh tanh asinh "
     "acosh "
     "atanh ceil floor trunc round rint nearbyint erf erfc tgamma lgamma",
     1, Takes::Numbers, Base::Double},
    {"pow atan2 hypot fmod remainder fmax fmin fdim copysign", 2, Takes::Numbers, Base::Double},
    {"fma", 3, Takes::Numbers, Base::Double},
    {"labs lround lrint", 1, Takes::Numbers, Base::Long},
    {"isnan isinf isfinite signbit", 1, Takes::Numbers, Base::Bool},
    {"isalpha isdigit isalnum isspace ispunct isupper islower toupper tolower", 1, Takes::Numbers, Base::Int},
    {"to_string", 1, Takes::Numbers, Base::String},
    {"stoi system", 1, Takes::Text, Base::Int},
    {"stol", 1, Takes::Text, Base::Long},
    {"stod", 1, Takes::Text, Base::Double},
    {"rand", 0, Takes::Numbers, Base::Int},
    {"clock", 0, Takes::Numbers, Base::Long},
    {"time", 1, Takes::Zero, Base::Long},
};

using Functions = std::unordered_map<std::string, const Group*>;

// The function and its name, which last; null when there is none.
const Functions::value_type* FindLibraryFunction(const std::string& name) {
    static const auto functions = [] {
        Functions all;
        for (const Group& group : groups) {
            std::istringstream names(group.names);
            for (std::string each; names >> each;) all["std::" + each] = &group;
        }
        return all;
    }();
    const auto found = functions.find(name);
    return found == functions.end() ? nullptr : &*found;
}

// As it stands in a program: std:max.
std::string Written(std::string name) {
    for (std::size_t at = name.find("::"); at != std::string::npos; at = name.find("::")) name.erase(at, 1);
    return name;
}

[[noreturn]] void FailArguments(const std::string& name, const char* wanted, const Expr& got) {
    ReportFatal("'" + Written(name) + "' expects " + wanted + " but got " + KorvelName(got.type), got.source);
}

bool IsNumber(const Expr& expr) { return !expr.type.IsKnown() || expr.type.IsNumber(); }
bool IsText(const Expr& expr) { return !expr.type.IsKnown() || expr.type.Is(Base::String); }

bool IsZero(const Expr& expr) { return expr.kind == ExprKind::Number && expr.word->text == "0"; }

void CheckArgument(const std::string& name, Takes takes, const Expr& argument, const Expr& first) {
    switch (takes) {
        case Takes::Numbers:
        case Takes::Same:
            if (!IsNumber(argument)) FailArguments(name, "a number", argument);
            return;
        case Takes::Text:
            if (!IsText(argument)) FailArguments(name, "a String", argument);
            return;
        case Takes::Alike:
            if (!(IsNumber(argument) && IsNumber(first)) && !(IsText(argument) && IsText(first)))
                FailArguments(name, "two numbers or two Strings", argument);
            return;
        case Takes::Zero:
            if (!IsZero(argument) && !argument.type.Is(Base::Null)) FailArguments(name, "0", argument);
            return;
    }
}

// The type that both are brought to. C++ wants to be told when it is not that of either.
ValueType AlikeType(const Expr& one, const Expr& other, bool& told) {
    const ValueType &a = one.type, &b = other.type;
    told = a != b || one.literal || other.literal;
    if (a == b || !a.IsKnown() || !b.IsKnown()) return a.IsKnown() ? b : a;
    const auto is = [&](Base base) { return a.Is(base) || b.Is(base); };
    return Single(is(Base::Double) ? Base::Double : is(Base::Long) ? Base::Long : Base::Int);
}

// Small numbers become an Int.
ValueType SameType(const ValueType& type) {
    const bool stays = !type.IsKnown() || type.Is(Base::Double) || type.Is(Base::Long);
    return stays ? type : Single(Base::Int);
}

ValueType ResultType(const Group& function, const Expr* first, bool& told) {
    ValueType type = Single(function.result);
    if (function.takes == Takes::Alike) type = AlikeType(*first, *first->next, told);
    if (function.takes == Takes::Same) type = SameType(first->type);
    return type;
}

// It takes a text of C, and what was printed before has to be out when the other program writes.
bool StartsProgram(std::string_view name) { return name == "std::system"; }

Expr& CallOf(const std::string& name, const Group& function, const PartList& arguments) {
    for (const Expr& argument : PartRange{arguments.First()}) {
        RequireValue(argument);
        CheckArgument(name, function.takes, argument, *arguments.First());
    }
    bool told = false;
    Expr& call = NewNode(ExprKind::Library, ResultType(function, arguments.First(), told));
    if (told && call.type.IsKnown()) call.closing = "<";
    call.text = name.c_str();
    call.first = arguments.First();
    call.isCall = call.effects = true;
    if (StartsProgram(name)) NoteUse(&ProgramUses::foreignOutput);
    return call;
}

}  // namespace

Expr& ParseLibraryName(Walk& walk) {
    std::string name = walk.Take();
    while (walk.PeekSign() == ':' && IsIdentifier(walk.Peek(1))) {
        walk.Take();
        name += "::" + walk.Take();
    }
    const auto* function = FindLibraryFunction(name);
    if (function == nullptr || !walk.Match('(')) {
        ReportFatal(
            "'" + Written(name) +
            "' is no value. Of the C++ library, functions on numbers and Strings can be called by their "
            "names, like std:max(a, b); InlineCpp can use the rest");
    }
    const PartList arguments = ParseArguments(walk);
    if (arguments.size() != function->second->arguments) {
        ReportFatal("'" + Written(name) + "' expects " + std::to_string(function->second->arguments) +
                    " argument(s), got " + std::to_string(arguments.size()));
    }
    return CallOf(function->first, *function->second, arguments);
}

// "std::max ( a , b )", in order where that could be seen. Texts go to C as it wants them.
void WriteLibrary(Code& out, const Expr& expr) {
    InOrder inOrder;
    const bool ordered = expr.ordered && expr.type.IsKnown();
    const bool ofC = StartsProgram(expr.text);
    Code call = expr.text;
    if (expr.closing[0] != '\0') call += "<" + CppName(expr.type) + ">";
    call += " (";
    const char* separator = " ";
    for (const Expr& argument : PartsOf(expr)) {
        Code value = ValueText(argument);
        if (ofC && !argument.literal) value = "(" + value + ").c_str()";
        call += separator;
        call += ordered && argument.type.IsKnown() ? Code(inOrder.Name(argument.type, value)) : value;
        separator = " , ";
    }
    call += " )";
    if (ordered)
        inOrder.Write(out, CppName(expr.type), call);
    else
        out += call;
}
