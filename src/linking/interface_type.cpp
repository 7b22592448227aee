#include "linking/interface_type.h"

#include "lexer/lexer.h"
#include "symbols/symbols.h"

bool IsStringType(const std::string& korvelType) { return Lower(korvelType) == "string"; }

bool CrossesBoundary(const std::string& korvelType) {
    static const char* const basic[] = {"int", "double", "string", "byte", "short", "long", "bool", "void*"};
    for (const char* name : basic) {
        if (Lower(korvelType) == name) return true;
    }
    return HasTypeName(korvelType) && IsClass(korvelType) && !IsElement(korvelType);
}

std::string InterfaceCppName(const std::string& korvelType) { return MapType(korvelType); }

std::string BoundaryCppName(const std::string& korvelType, const std::string& cppType) {
    if (IsStringType(korvelType)) return "const char*";
    return HasTypeName(korvelType) ? "void*" : cppType;
}

ValueType InterfaceValueType(const std::string& korvelType) {
    return Lower(korvelType) == "void" ? Single(Base::Void) : ParseType(korvelType);
}
