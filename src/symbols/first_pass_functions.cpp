// Functions and Extern blocks.
#include <algorithm>

#include "driver/report.h"
#include "driver/settings.h"
#include "symbols/extern_functions.h"
#include "symbols/first_pass_state.h"
#include "symbols/identifiers.h"
#include "symbols/parameters.h"

namespace {

void RegisterExtern(const std::string& name) {
    symbols.externFunctions.insert(name);
    VerboseNote("  - Registered extern C function: " + name);
}

// Every Function named Main, in any letter case, becomes the one C++ main.
void RegisterMain(FirstPass& pass, Routine&& routine) {
    routine.cppName = "main";
    routine.result = Single(Base::Int);
    if (!pass.again && HasMainFunction()) FailAlreadyDefined(routine.name);
    pass.mainName = routine.name;
    symbols.functions[pass.mainName] = std::move(routine);
}

bool SameSignature(const Routine& a, const Routine& b) {
    return a.result == b.result &&
           std::equal(a.parameters.begin(), a.parameters.end(), b.parameters.begin(), b.parameters.end(),
                      [](const Parameter& x, const Parameter& y) { return x.type == y.type; });
}

// Enters the Function and tells the prototype whether the name is taken. One C function may be declared in
// several Extern blocks; the first declaration counts.
void Register(const FirstPass& pass, const Routine& routine, Prototype& prototype) {
    const auto entered = symbols.functions.emplace(routine.name, routine);
    Routine& known = entered.first->second;
    if (entered.second) return;
    if (known.isExtern && routine.isExtern) {
        prototype.again = known.file != routine.file || known.line != routine.line;
        prototype.clashes = !SameSignature(known, routine);
    } else if (pass.again) {
        known = routine;
    } else {
        prototype.clashes = true;
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
    prototype.wrapper = texts.wrapper + (prototype.again ? ";" : " { " + texts.body + " }");
}

}  // namespace

void FailAlreadyDefined(const std::string& name) {
    ReportFatal("Identifier '" + name + "' is already defined.");
}

void CollectExtern(FirstPass& pass, TokenSpan tokens) {
    pass.inExtern = tokens.KeywordAt(0) == Keyword::Extern;
    pass.out.unclosedExtern = pass.inExtern ? pass.line : 0;
    VerboseNote(pass.inExtern ? "  - Entering extern block" : "  - Exiting extern block");
}

void CollectFunction(FirstPass& pass, TokenSpan tokens) {
    Routine routine = ParseRoutineHeader(tokens);
    routine.isExtern = pass.inExtern;
    routine.file = pass.source;
    routine.line = pass.line;
    ++pass.out.functionCount;
    if (!pass.inExtern && Lower(routine.name) == "main") return RegisterMain(pass, std::move(routine));
    if (pass.inExtern) RegisterExtern(routine.name);
    routine.cppName = SafeName(routine.name);
    Prototype prototype;
    prototype.name = routine.name;
    prototype.isExtern = routine.isExtern;
    prototype.line = settings.currentLine;
    Register(pass, routine, prototype);
    pass.out.functions.push_back(std::move(prototype));
}

void FinishRoutines(FirstPass& pass) {
    const int line = settings.currentLine;
    if (!pass.mainName.empty()) Settle(symbols.functions.at(pass.mainName));
    for (Prototype& prototype : pass.out.functions) {
        if (prototype.clashes) continue;
        Routine& routine = symbols.functions.at(prototype.name);
        Settle(routine);
        if (routine.isExtern)
            DeclareExtern(prototype, routine);
        else
            prototype.text = PrototypeText(routine);
    }
    for (const ClassInfo* declared : pass.out.classes) {
        if (!declared->registered || declared->sourceFile != pass.source) continue;
        ClassInfo& cls = *FindClass(declared->name);
        for (const std::string& method : cls.methods) Settle(cls.routines.at(method));
    }
    settings.currentLine = line;
}
