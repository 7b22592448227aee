#include "symbols/prepopulate.h"

#include "driver/report.h"
#include "driver/settings.h"
#include "symbols/extern_functions.h"
#include "symbols/first_pass_state.h"
#include "symbols/identifiers.h"

namespace {

void CheckFunctionName(const Prototype& function) {
    settings.currentLine = function.line;
    CheckCppWord(function.name);
    CheckKeyword(function.name);
    if (function.isExtern) CheckExternName(function.name);
    const bool taken =
        function.clashes || IsClass(function.name) || symbols.globals.count(function.name) != 0 ||
        symbols.constants.count(function.name) != 0 || symbols.userlibFunctions.count(function.name) != 0;
    if (taken) FailAlreadyDefined(function.name);
    CheckName(function.name);
}

void SayRegistered(const char* kind, const std::vector<std::string>& names) {
    if (!settings.verbose) return;
    for (const std::string& name : names) Say(std::string("  - Registered ") + kind + ": " + name);
}

}  // namespace

void Prepopulate(const Declarations& declarations) {
    VerboseNote("Pre-populating symbol tables with forward declarations...");
    VerboseNote("  - Classes already registered with full information from first pass:");
    if (settings.verbose)
        for (const ClassInfo* cls : symbols.classList) Say("    * " + cls->name);
    for (const Prototype& function : declarations.functions) {
        CheckFunctionName(function);
        if (settings.verbose) Say("  - Registered function: " + function.name);
    }
    SayRegistered("global", declarations.globalNames);
    SayRegistered("constant", declarations.constNames);
    VerboseNote("Symbol tables populated. Second pass can now reference any function/type/global/constant.");
}
