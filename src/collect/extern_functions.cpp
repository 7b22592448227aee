// Some Extern functions cannot be declared as they stand. Those whose names the standard headers have declared
// already, with types of their own, are declared once more under a name of ours, bound to the same symbol: what
// counts is that the types agree with those of C at the call, not in the headers. Those that take or give
// Strings are called through a wrapper.
#include "collect/extern_functions.h"

#include <algorithm>
#include <unordered_map>

#include "base/report.h"
#include "collect/parameters.h"
#include "linking/library_names.h"
#include "symbols/identifiers.h"
#include "symbols/inline_cpp.h"

namespace {

// The functions whose types in C are those of the language, by these types.
const std::unordered_map<std::string, const char*> plainFunctions = {
    {"int()", " rand getpid getppid getchar "},
    {"void()", " abort "},
    {"void(int)", " exit quick_exit "},
    {"int(int)",
     " toupper tolower isalpha isdigit isalnum isspace isupper islower ispunct isxdigit iscntrl isgraph "
     "isprint "
     "isblank putchar isatty close dup raise ffs "},
    {"int(int, int)", " kill dup2 "},
    {"long(long)", " labs "},
    {"long()", " clock random lrand48 mrand48 "},
    {"double()", " drand48 "},
    {"double(double)",
     " exp2 expm1 log1p log2 erf erfc tgamma lgamma rint nearbyint trunc round cbrt sinh cosh tanh asinh "
     "acosh "
     "atanh logb "},
    {"double(double, double)", " fmod hypot fmax fmin fdim copysign remainder nextafter "},
    {"double(double, int)", " ldexp scalbn "},
    {"int(double)", " ilogb "},
    {"long(double)", " lround lrint "},
    {"void(void*)", " free "},
};

bool AgreesWithHeaders(const Routine& routine) {
    std::string types;
    for (const Parameter& parameter : routine.parameters)
        types += (types.empty() ? "" : ", ") + ParameterCppName(parameter.type);
    const auto found = plainFunctions.find(ResultCppName(routine.result) + "(" + types + ")");
    if (found == plainFunctions.end()) return false;
    return std::string(found->second).find(" " + routine.name + " ") != std::string::npos;
}

// How many parameters come before the "..." of functions that have it.
std::size_t FixedParameters(const Routine& routine) {
    static const std::unordered_map<std::string, std::size_t> counts = {
        {"printf", 1},  {"fprintf", 2}, {"dprintf", 2}, {"sprintf", 2}, {"snprintf", 3},
        {"scanf", 1},   {"sscanf", 2},  {"open", 2},    {"fcntl", 2},   {"ioctl", 2},
        {"syscall", 1}, {"execl", 2},   {"execlp", 2},
    };
    const auto found = counts.find(routine.name);
    return found == counts.end() ? routine.parameters.size() : found->second;
}

bool IsVariadic(const Routine& routine) { return FixedParameters(routine) < routine.parameters.size(); }

bool HasStrings(const Routine& routine) {
    return routine.result.Is(Base::String) ||
           std::any_of(routine.parameters.begin(), routine.parameters.end(),
                       [](const Parameter& parameter) { return parameter.type.Is(Base::String); });
}

// How a function is declared to C++.
struct Crossing {
    std::string symbol;  // the name in the prototype
    bool bound = false;  // to a name of C other than that
    std::string result;  // the types of C
    std::vector<std::string> parameters;
};

std::string CType(const ValueType& type, const std::string& otherwise) {
    return type.Is(Base::String) ? "const char*" : otherwise;
}

Crossing PlainCrossing(const Routine& routine) {
    Crossing crossing;
    crossing.symbol = routine.name;
    crossing.result = CType(routine.result, ResultCppName(routine.result));
    for (const Parameter& parameter : routine.parameters)
        crossing.parameters.push_back(CType(parameter.type, ParameterCppName(parameter.type)));
    return crossing;
}

bool Contains(const std::string& type, const char* word) { return type.find(word) != std::string::npos; }

// The type of a String that inline C++ writes so; empty for what is none.
std::string StringType(const std::string& written) {
    const std::string qualifier = Contains(written, "const") ? "const " : "";
    const bool pointer = Contains(written, "*");
    if (Contains(written, "string")) {
        if (pointer) return {};
        return Contains(written, "&") ? qualifier + "std::string&" : "std::string";
    }
    if (!Contains(written, "char") || !pointer) return {};
    return qualifier + (Contains(written, "unsigned") ? "unsigned char*" : "char*");
}

// A function that inline C++ defines as static has to be declared so.
bool IsStatic(const Routine& routine) {
    if (!symbols.inlineCpp) return false;
    const std::vector<InlineFunction> functions = FindInlineFunctions(routine.name);
    return std::any_of(functions.begin(), functions.end(), [&](const InlineFunction& function) {
        return function.isStatic && function.parameters.size() == routine.parameters.size();
    });
}

// Takes the type over where the language has a String; false when it is none in C++.
bool TakeStringType(const ValueType& korvel, const std::string& written, std::string& type) {
    if (korvel.Is(Base::String)) type = StringType(written);
    return !type.empty();
}

// The types of Strings as inline C++ of the program declares them; false when it does not.
bool TakeInlineTypes(const Routine& routine, Crossing& crossing) {
    for (const InlineFunction& function : FindInlineFunctions(routine.name)) {
        if (function.parameters.size() != routine.parameters.size()) continue;
        Crossing taken = crossing;
        bool fits = TakeStringType(routine.result, function.result, taken.result);
        for (std::size_t i = 0; i < routine.parameters.size(); ++i)
            fits = fits &&
                   TakeStringType(routine.parameters[i].type, function.parameters[i], taken.parameters[i]);
        if (fits) crossing = taken;
        if (fits) return true;
    }
    return false;
}

Crossing CrossingOf(const Routine& routine) {
    Crossing crossing = PlainCrossing(routine);
    const bool ofHeaders = IsDeclaredByHeaders(routine.name);
    if (!ofHeaders && TakeInlineTypes(routine, crossing)) return crossing;
    // A file that inline C++ includes may declare it with other types than ours.
    crossing.bound = ofHeaders || (InlineCppIncludesFiles() && !IsStatic(routine));
    if (crossing.bound)
        crossing.symbol =
            (HasStrings(routine) || IsVariadic(routine) ? "__kvC_" : "__kvExtern_") + routine.name;
    return crossing;
}

std::string Prototype(const Routine& routine, const Crossing& crossing) {
    const std::size_t fixed = std::min(FixedParameters(routine), routine.parameters.size());
    std::string text;
    for (std::size_t i = 0; i < fixed; ++i)
        text +=
            (text.empty() ? "" : ", ") + crossing.parameters[i] + " " + SafeName(routine.parameters[i].name);
    text = crossing.result + " " + crossing.symbol + "(" + text + (IsVariadic(routine) ? ", ...)" : ")");
    return crossing.bound ? text + " __asm__(KV_C_NAME(\"" + routine.name + "\"));" : text + ";";
}

// A function that may change its text gets one of its own.
std::string WrapperParameters(const Routine& routine, const Crossing& crossing) {
    std::string text;
    for (std::size_t i = 0; i < routine.parameters.size(); ++i) {
        const Parameter& parameter = routine.parameters[i];
        std::string type = ParameterCppName(parameter.type);
        if (parameter.type.Is(Base::String) && crossing.parameters[i] != "std::string&")
            type = "const std::string&";
        text += (text.empty() ? "" : ", ") + type + " " + SafeName(parameter.name);
    }
    return "(" + text + ")";
}

std::string Argument(const Parameter& parameter, const std::string& type) {
    const std::string name = SafeName(parameter.name);
    if (!parameter.type.Is(Base::String) || Contains(type, "string")) return name;
    return (type == "const char*" ? "" : "(" + type + ")") + name + ".c_str()";
}

std::string WrapperBody(const Routine& routine, const Crossing& crossing) {
    std::string call;
    for (std::size_t i = 0; i < routine.parameters.size(); ++i)
        call += (i > 0 ? ", " : "") + Argument(routine.parameters[i], crossing.parameters[i]);
    // A parameter may be called like the function.
    call = (crossing.bound ? "" : "::") + crossing.symbol + "(" + call + ")";
    if (routine.result.Is(Base::Void)) return call + ";";
    if (!routine.result.Is(Base::String) || Contains(crossing.result, "string"))
        return "return " + call + ";";
    return "const char* __kvText = " + std::string(crossing.result == "const char*" ? "" : "(const char*)") +
           call + "; return __kvText ? std::string(__kvText) : std::string();";
}

// A function that takes and gives its Strings as C++ does.
bool IsOfCpp(const Routine& routine, const Crossing& crossing) {
    bool plain = !routine.result.Is(Base::String) || crossing.result == "std::string";
    for (std::size_t i = 0; i < routine.parameters.size(); ++i)
        plain = plain &&
                (!routine.parameters[i].type.Is(Base::String) || crossing.parameters[i] == "std::string");
    return plain;
}

}  // namespace

void CheckExternName(const std::string& name) {
    if (name == "main") ReportFatal("Identifier 'main' is already defined.");
    if (IsLibraryNonFunction(name))
        ReportFatal("'" + name + "' is no function of the C library, so it cannot be declared as one",
                    Tokens{name});
}

namespace {

ExternTexts TextsOf(const Routine& routine) {
    const bool ofHeaders = IsDeclaredByHeaders(routine.name) && !AgreesWithHeaders(routine);
    if (!ofHeaders && !HasStrings(routine)) return {routine.name, PrototypeText(routine), "", "", false};
    const Crossing crossing = CrossingOf(routine);
    if (!ofHeaders && IsOfCpp(routine, crossing))
        return {routine.name, PrototypeText(routine), "", "", false};
    ExternTexts texts{"__kvExtern_" + routine.name, Prototype(routine, crossing), "", "", crossing.bound};
    if (crossing.symbol == texts.cppName) return texts;
    texts.wrapper = "inline " + ResultCppName(routine.result) + " " + texts.cppName +
                    WrapperParameters(routine, crossing);
    texts.body = WrapperBody(routine, crossing);
    return texts;
}

}  // namespace

ExternTexts TextsOfExtern(const Routine& routine) {
    ExternTexts texts = TextsOf(routine);
    if (!texts.bound && IsStatic(routine)) texts.prototype = "static " + texts.prototype;
    return texts;
}
