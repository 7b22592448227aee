#include "linking/runtime_code.h"

#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "lexer/lexer.h"
#include "linking/interface_type.h"
#include "linking/library_names.h"
#include "symbols/identifiers.h"
#include "symbols/own_names.h"
#include "symbols/symbols.h"

namespace {

// The characters of a text inside a C++ string literal.
std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : text) {
        const unsigned char code = static_cast<unsigned char>(c);
        const bool trigraph = c == '?' && !escaped.empty() && escaped.back() == '?';
        if (c == '"' || c == '\\' || trigraph) escaped += '\\';
        if (code < 32 || code == 127) {
            const char digits[] = {'\\', static_cast<char>('0' + code / 64),
                                   static_cast<char>('0' + code / 8 % 8), static_cast<char>('0' + code % 8),
                                   0};
            escaped += digits;
        } else {
            escaped += c;
        }
    }
    return escaped;
}

std::string Join(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + part;
    return text;
}

// A function as the block emits it: types at the boundary, C++ names of the parameters.
struct Wrapped {
    const UserlibFunction* function = nullptr;
    std::string pointer, pointerType;   // names of the pointer to the DLL's function and of its type
    std::vector<std::string> names;     // of the parameters
    std::vector<std::string> types;     // as the DLL takes them
    std::vector<std::string> ownTypes;  // as the program passes them
    std::string boundaryReturn;
};

struct WrappedDll {
    std::string name;
    std::string handle;
    std::vector<Wrapped> functions;
};

bool CannotNameParameter(const std::string& name, const std::unordered_set<std::string>& taken) {
    return name.empty() || name == "result" || IsCppWord(name) || IsWindowsMacro(name) ||
           taken.count(name) > 0;
}

// The parameters' names, changed where C++ would take them for something else.
std::vector<std::string> ParameterNames(const UserlibFunction& function, const std::string& pointer) {
    std::vector<std::string> names;
    std::unordered_set<std::string> taken = {pointer};
    for (const UserlibParameter& parameter : function.parameters) {
        std::string name = parameter.name.empty() ? "p" : parameter.name;
        while (CannotNameParameter(name, taken)) name += "_";
        taken.insert(name);
        names.push_back(name);
    }
    return names;
}

Wrapped Wrap(const UserlibFunction& function) {
    Wrapped wrapped;
    wrapped.function = &function;
    const std::string pointer = function.name + "_ptr";
    wrapped.pointer = OwnName(IsOfCppLibrary(pointer) ? pointer + "_" : pointer);
    wrapped.pointerType = OwnName(function.name + "_TYPE");
    wrapped.names = ParameterNames(function, wrapped.pointer);
    wrapped.boundaryReturn = BoundaryCppName(function.korvelReturn, function.cppReturn);
    for (const UserlibParameter& parameter : function.parameters) {
        wrapped.types.push_back(BoundaryCppName(parameter.korvelType, parameter.cppType));
        wrapped.ownTypes.push_back(IsStringType(parameter.korvelType) ? "std::string" : parameter.cppType);
    }
    return wrapped;
}

// All DLLs; of two declarations of one function the later one counts.
std::vector<WrappedDll> WrapAll() {
    std::unordered_map<std::string, const UserlibFunction*> last;
    for (const UserlibDll& dll : symbols.userlibDLLs) {
        for (const UserlibFunction& function : dll.functions) last[function.name] = &function;
    }
    std::vector<WrappedDll> all;
    for (const UserlibDll& dll : symbols.userlibDLLs) {
        WrappedDll wrapped{dll.name, "hDLL_" + std::to_string(all.size()), {}};
        for (const UserlibFunction& function : dll.functions) {
            if (last[function.name] == &function) wrapped.functions.push_back(Wrap(function));
        }
        all.push_back(wrapped);
    }
    return all;
}

// #ifdef _WIN32 / windows / #else / other / #endif, each line behind the indentation.
std::string PerPlatform(const std::string& indent, const std::string& windows, const std::string& other) {
    return indent + "#ifdef _WIN32\n" + windows + indent + "#else\n" + other + indent + "#endif\n";
}

std::string Pointer(const Wrapped& f) {
    const std::string parameters = f.pointerType + ")(" + Join(f.types) + ");\n";
    return PerPlatform("", "typedef " + f.boundaryReturn + " (__stdcall *" + parameters,
                       "typedef " + f.boundaryReturn + " (*" + parameters) +
           f.pointerType + " " + f.pointer + " = NULL;\n\n";
}

std::string Handle(const WrappedDll& dll) {
    std::string text =
        GuardComment("// DLL: " + dll.name) + "\n" +
        PerPlatform("", "HMODULE " + dll.handle + " = NULL;\n", "void* " + dll.handle + " = NULL;\n") + "\n";
    for (const Wrapped& f : dll.functions) text += Pointer(f);
    return text;
}

std::string Resolve(const WrappedDll& dll, const Wrapped& f) {
    const std::string& name = f.function->name;
    const std::string symbol = "(" + dll.handle + ", " + CppLiteral(f.function->symbol) + ");\n";
    const std::string assign = "        " + f.pointer + " = (" + f.pointerType + ")";
    const std::string failed = "            std::cerr << \"ERROR: Failed to load function " + name + " as '" +
                               Escaped(f.function->symbol) + "' from " + Escaped(dll.name);
    return PerPlatform("        ", assign + "GetProcAddress" + symbol, assign + "dlsym" + symbol) +
           "        if (" + f.pointer + " == NULL) {\n" +
           PerPlatform("            ",
                       "            DWORD err = GetLastError();\n" + failed +
                           " (Error: \" << err << \")\" << std::endl;\n",
                       "            const char* err = dlerror();\n" + failed +
                           " - \" << (err ? err : \"Unknown error\") << std::endl;\n") +
           "        }\n";
}

std::string Load(const WrappedDll& dll) {
    const std::string literal = CppLiteral(dll.name);
    const std::string failed = "        std::cerr << \"ERROR: Failed to load " + Escaped(dll.name);
    std::string text = GuardComment("    // Load " + dll.name) + "\n" +
                       PerPlatform("    ", "    " + dll.handle + " = LoadLibrary(" + literal + ");\n",
                                   "    " + dll.handle + " = dlopen(" + literal + ", RTLD_LAZY);\n") +
                       "    if (" + dll.handle + " == NULL) {\n" +
                       PerPlatform("        ",
                                   "        DWORD err = GetLastError();\n" + failed +
                                       " (Error: \" << err << \")\" << std::endl;\n",
                                   "        const char* err = dlerror();\n" + failed +
                                       ": \" << (err ? err : \"Unknown error\") << std::endl;\n") +
                       "    } else {\n";
    for (const Wrapped& f : dll.functions) text += Resolve(dll, f);
    return text + "    }\n\n";
}

std::string Call(const Wrapped& f) {
    std::vector<std::string> arguments;
    for (std::size_t i = 0; i < f.names.size(); ++i) {
        const std::string& type = f.function->parameters[i].korvelType;
        arguments.push_back(IsStringType(type)  ? f.names[i] + ".c_str()"
                            : HasTypeName(type) ? "(void*)" + f.names[i]
                                                : f.names[i]);
    }
    return f.pointer + "(" + Join(arguments) + ");\n";
}

std::string Body(const Wrapped& f) {
    const UserlibFunction& function = *f.function;
    if (IsStringType(function.korvelReturn)) {
        return "    const char* result = " + Call(f) + "    if (result == NULL) return \"\";\n" +
               "    return std::string(result);\n";
    }
    if (HasTypeName(function.korvelReturn)) {
        return "    void* result = " + Call(f) + "    return (" + function.cppReturn + ")result;\n";
    }
    return std::string("    ") + (function.cppReturn == "void" ? "" : "return ") + Call(f);
}

// int Beep(int freq, std::string text)
// {
//     if (Beep_ptr == NULL) { ... return 0; }
//     return Beep_ptr(freq, text.c_str());
// }
std::string Wrapper(const Wrapped& f) {
    const UserlibFunction& function = *f.function;
    const bool isVoid = function.cppReturn == "void";
    std::vector<std::string> parameters;
    for (std::size_t i = 0; i < f.names.size(); ++i) parameters.push_back(f.ownTypes[i] + " " + f.names[i]);
    return function.cppReturn + " " + function.name + "(" + Join(parameters) + ")\n{\n" +  //
           "    if (" + f.pointer + " == NULL) {\n" +                                      //
           "        std::cerr << \"ERROR: " + function.name + " not loaded!\" << std::endl;\n" +
           (isVoid ? "        return;\n" : "        return " + DefaultValue(function.cppReturn) + ";\n") +
           "    }\n" + Body(f) + "}\n\n";
}

// A wrapper whose name means something else already stands in a namespace of its own.
std::string PlacedWrapper(const Wrapped& f) {
    const std::string& name = f.function->name;
    if (!ClashesWithLibrary(name)) return Wrapper(f);
    return "#undef " + name + "\nnamespace kvlUserlib {\n" + Wrapper(f) + "}\n\n";
}

// int (&kvl_Beep)(int, std::string) = ::Beep;
std::string CallName(const Wrapped& f) {
    const std::string& name = f.function->name;
    return f.function->cppReturn + " (&kvl_" + name + ")(" + Join(f.ownTypes) +
           ") = " + (ClashesWithLibrary(name) ? "kvlUserlib" : "") + "::" + name + ";\n";
}

}  // namespace

std::string CppLiteral(const std::string& text) { return "\"" + Escaped(text) + "\""; }

std::string GenerateUserlibCode() {
    if (symbols.userlibDLLs.empty()) return {};
    const std::vector<WrappedDll> dlls = WrapAll();
    std::string text = "\n// ===== Userlib Runtime Linking =====\n" +
                       PerPlatform("", "#include <windows.h>\n", "#include <dlfcn.h>\n") + "\n";
    for (const WrappedDll& dll : dlls) text += Handle(dll);
    text += "void InitUserlibs()\n{\n";
    for (const WrappedDll& dll : dlls) text += Load(dll);
    text += "}\n\n";
    std::string callNames;
    for (const WrappedDll& dll : dlls) {
        for (const Wrapped& f : dll.functions) {
            text += PlacedWrapper(f);
            callNames += CallName(f);
        }
    }
    text += "// ===== End Userlib Code =====\n\n";
    return callNames.empty() ? text : text + callNames + "\n";
}
