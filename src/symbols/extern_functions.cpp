// Extern functions whose names the standard headers have declared already, with types of their own. The program
// declares them once more under a name of ours, bound to the same symbol: what counts is that the types agree
// with those of C at the call, not in the headers. A String crosses as a text that ends in a zero.
#include "symbols/extern_functions.h"

#include <algorithm>
#include <unordered_map>

#include "driver/report.h"
#include "linking/library_names.h"
#include "symbols/identifiers.h"
#include "symbols/parameters.h"

namespace {

bool IsOfLibrary(const Routine& routine) { return routine.cppName != routine.name; }

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

bool NeedsWrapper(const Routine& routine) {
    return IsOfLibrary(routine) && (HasStrings(routine) || IsVariadic(routine));
}

std::string CType(const ValueType& type, const std::string& otherwise) {
    return type.Is(Base::String) ? "const char*" : otherwise;
}

std::string CParameters(const Routine& routine) {
    std::string text;
    const std::size_t fixed = std::min(FixedParameters(routine), routine.parameters.size());
    for (std::size_t i = 0; i < fixed; ++i) {
        const Parameter& parameter = routine.parameters[i];
        text += (text.empty() ? "" : ", ") + CType(parameter.type, ParameterCppName(parameter.type)) + " " +
                SafeName(parameter.name);
    }
    return "(" + text + (IsVariadic(routine) ? ", ...)" : ")");
}

std::string WrapperParameters(const Routine& routine) {
    std::string text;
    for (const Parameter& parameter : routine.parameters) {
        const std::string type =
            parameter.type.Is(Base::String) ? "const std::string&" : ParameterCppName(parameter.type);
        text += (text.empty() ? "" : ", ") + type + " " + SafeName(parameter.name);
    }
    return "(" + text + ")";
}

std::string Arguments(const Routine& routine) {
    std::string text;
    for (const Parameter& parameter : routine.parameters) {
        text += (text.empty() ? "" : ", ") + SafeName(parameter.name);
        if (parameter.type.Is(Base::String)) text += ".c_str()";
    }
    return "(" + text + ")";
}

std::string SymbolName(const Routine& routine) {
    return NeedsWrapper(routine) ? "__kvC_" + routine.name : routine.cppName;
}

}  // namespace

const char* const externNameMacros =
    "#define KV_C_TEXT(name) #name\n"
    "#define KV_C_PREFIX(name) KV_C_TEXT(name)\n"
    "#define KV_C_NAME(name) KV_C_PREFIX(__USER_LABEL_PREFIX__) name\n";

std::string ExternCppName(const Routine& routine) {
    if (!IsDeclaredByHeaders(routine.name) || AgreesWithHeaders(routine)) return routine.name;
    return "__kvExtern_" + routine.name;
}

void CheckExternName(const std::string& name) {
    if (name == "main") ReportFatal("Identifier 'main' is already defined.");
    if (IsLibraryNonFunction(name))
        ReportFatal("'" + name + "' is no function of the C library, so it cannot be declared as one");
}

std::string ExternPrototype(const Routine& routine) {
    if (!IsOfLibrary(routine)) return PrototypeText(routine);
    return CType(routine.result, ResultCppName(routine.result)) + " " + SymbolName(routine) +
           CParameters(routine) + " __asm__(KV_C_NAME(\"" + routine.name + "\"));";
}

std::string ExternWrapper(const Routine& routine) {
    if (!NeedsWrapper(routine)) return {};
    const std::string call = SymbolName(routine) + Arguments(routine);
    const std::string head =
        "inline " + ResultCppName(routine.result) + " " + routine.cppName + WrapperParameters(routine);
    if (routine.result.Is(Base::Void)) return head + " { " + call + "; }";
    if (!routine.result.Is(Base::String)) return head + " { return " + call + "; }";
    return head + " { const char* text = " + call + "; return text ? std::string(text) : std::string(); }";
}
