#include "collect/settle.h"

#include "base/journal.h"
#include "base/report.h"
#include "base/settings.h"
#include "collect/extern_functions.h"
#include "collect/first_pass_state.h"
#include "collect/inference.h"
#include "collect/parameters.h"
#include "symbols/identifiers.h"
#include "symbols/mistakes.h"
#include "symbols/scopes.h"

namespace {

// Calls of a routine whose head is wrong are not judged.
template <class Work>
void KeepMistakesOf(const std::string& name, Work work) {
    try {
        work();
    } catch (const Stop& stop) {
        KeepMistake(stop, {});
        Doubt(WordOf(name));
    }
}

void Settle(Routine& routine) {
    settings.currentLine = routine.line;
    SettleParameters(routine);
}

void DeclareExtern(Prototype& prototype, Routine& routine) {
    ExternTexts texts = TextsOfExtern(routine);
    routine.cppName = std::move(texts.cppName);
    prototype.bound = texts.bound;
    prototype.text = std::move(texts.prototype);
    if (texts.wrapper.empty()) return;
    // One definition is enough; where a header comes before that of the other file, this declares it.
    const std::string definition = texts.wrapper + " { " + texts.body + " }";
    const bool isLate = !prototype.again && routine.result.sequence;
    prototype.wrapper = prototype.again || isLate ? texts.wrapper + ";" : definition;
    if (isLate) prototype.lateWrapper = definition;
}

void SettleFunction(Prototype& prototype) {
    if (prototype.clashes) return;
    Routine& routine = *symbols.functions.Find(prototype.name);
    Settle(routine);
    if (routine.isExtern)
        DeclareExtern(prototype, routine);
    else
        prototype.text = PrototypeText(routine);
}

void SettleMethods(const ClassInfo& declared, const std::string& source) {
    if (!declared.registered || declared.sourceFile != source) return;
    ClassInfo& cls = *FindClass(declared.name);
    for (const Token method : cls.methods)
        KeepMistakesOf(method, [&] { Settle(*cls.routines.Find(method)); });
}

void CheckFunctionName(const Prototype& function) {
    settings.currentLine = function.line;
    CheckCppWord(function.name);
    CheckKeyword(function.name);
    if (function.isExtern) CheckExternName(function.name);
    const bool taken = function.clashes || IsClass(function.name) || symbols.globals.Has(function.name) ||
                       symbols.constants.Has(function.name) || symbols.userlibRoutines.Has(function.name);
    if (taken) FailAlreadyDefined(function.name);
    CheckName(function.name);
}

void SayRegistered(const char* kind, const std::vector<std::string>& names) {
    for (const std::string& name : names) Say(std::string("  - Registered ") + kind + ": " + name);
}

}  // namespace

void SettleRoutines(Declarations& declarations) {
    settings.currentFile = declarations.source;
    const std::string& main = declarations.mainName;
    if (!main.empty()) KeepMistakesOf(main, [&] { Settle(*symbols.functions.Find(main)); });
    for (Prototype& function : declarations.functions)
        KeepMistakesOf(function.name, [&] { SettleFunction(function); });
    for (const ClassInfo* declared : declarations.classes) SettleMethods(*declared, declarations.source);
}

void CheckFunctionNames(const Declarations& declarations) {
    const int line = settings.currentLine;
    for (const Prototype& function : declarations.functions)
        KeepMistakesOf(function.name, [&] { CheckFunctionName(function); });
    settings.currentLine = line;
}

void SayNames(const Declarations& declarations) {
    if (!settings.verbose) return;
    Say("Pre-populating symbol tables with forward declarations...");
    Say("  - Classes already registered with full information from first pass:");
    for (const ClassInfo* cls : symbols.classList) Say("    * " + cls->name);
    for (const Prototype& function : declarations.functions) Say("  - Registered function: " + function.name);
    SayRegistered("global", declarations.globalNames);
    SayRegistered("constant", declarations.constNames);
    Say("Symbol tables populated. Second pass can now reference any function/type/global/constant.");
}

namespace {

void SettleMembers(ClassInfo& cls, const Tokens& names) {
    for (const Token name : names)
        if (Variable* field = cls.members.Find(name)) SettleType(*field, &cls);
}

}  // namespace

void SettleTypes(const Declarations& declarations) {
    Chapter untold;
    const OpenChapter nothingIsSaid(untold);
    for (const std::string& name : declarations.globalNames) SettleTypeOf(name);
    for (const std::string& name : declarations.constNames) SettleTypeOf(name);
    for (const ClassInfo* cls : declarations.classes) SettleMembers(*FindClass(cls->name), cls->fields);
}

void SettleLeftTypes() {
    Chapter untold;
    const OpenChapter nothingIsSaid(untold);
    for (auto& global : symbols.globals) SettleType(global.second, nullptr);
    for (auto& constant : symbols.constants) SettleType(constant.second, nullptr);
    for (ClassInfo& cls : symbols.classes) SettleMembers(cls, cls.fields);
}
