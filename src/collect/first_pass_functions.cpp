// Functions and Extern blocks.
#include <algorithm>

#include "base/report.h"
#include "base/settings.h"
#include "collect/first_pass_state.h"
#include "collect/parameters.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"

namespace {

void RegisterExtern(const std::string& name) {
    symbols.externFunctions.Add(name);
    VerboseNote("  - Registered extern C function: " + name);
}

// Every Function named Main, in any letter case, becomes the one C++ main.
void RegisterMain(FirstPass& pass, Routine&& routine) {
    routine.cppName = "main";
    routine.result = Single(Base::Int);
    if (HasMainFunction()) FailAlreadyDefined(routine.name);
    pass.out.mainName = routine.name;
    symbols.functions[pass.out.mainName] = std::move(routine);
}

bool SameSignature(const Routine& a, const Routine& b) {
    return a.result == b.result &&
           std::equal(a.parameters.begin(), a.parameters.end(), b.parameters.begin(), b.parameters.end(),
                      [](const Parameter& x, const Parameter& y) { return x.type == y.type; });
}

// Enters the Function and tells the prototype whether the name is taken. One C function may be declared in
// several Extern blocks; the first declaration counts.
void Register(const Routine& routine, Prototype& prototype) {
    const auto [known, isNew] = symbols.functions.Add(routine.name, routine);
    if (isNew) return;
    if (known.isExtern && routine.isExtern) {
        prototype.again = known.file != routine.file || known.line != routine.line;
        prototype.clashes = !SameSignature(known, routine);
    } else {
        prototype.clashes = true;
    }
}

}  // namespace

void CollectExtern(FirstPass& pass, TokenSpan tokens) {
    pass.inExtern = tokens.KeywordAt(0) == Keyword::Extern;
    pass.out.unclosedExtern = pass.inExtern ? pass.line : 0;
    VerboseNote(pass.inExtern ? "  - Entering extern block" : "  - Exiting extern block");
}

void CollectFunction(FirstPass& pass, TokenSpan tokens) {
    Routine routine = ParseRoutineHeader(tokens);
    routine.isExtern = pass.inExtern;
    routine.file = pass.out.source;
    routine.line = pass.line;
    ++pass.out.functionCount;
    if (!pass.inExtern && Lower(routine.name) == "main") return RegisterMain(pass, std::move(routine));
    if (pass.inExtern) RegisterExtern(routine.name);
    routine.cppName = SafeName(routine.name);
    Prototype prototype;
    prototype.name = routine.name;
    prototype.isExtern = routine.isExtern;
    prototype.line = settings.currentLine;
    Register(routine, prototype);
    pass.out.functions.push_back(std::move(prototype));
}
