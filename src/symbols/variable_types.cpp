#include "symbols/variable_types.h"

#include <unordered_map>

#include "base/run.h"

namespace {

bool settling = false;
// Those whose values give no type, and what is wrong with them, if anything is.
std::unordered_map<const Variable*, Stop> untyped;
const PartOfRun partOfRun(settling, untyped);

const Variable* WithType(Variable& variable, const ClassInfo* owner) {
    if (variable.type.IsKnown() || variable.initialiser.empty()) return &variable;
    const auto found = untyped.find(&variable);
    if (found == untyped.end() && settling) throw AwaitedType{&variable, owner};
    if (found != untyped.end() && !found->second.mistakes.empty()) throw Stop(found->second);
    return &variable;
}

const Variable* FindIn(NameTable<Variable>& variables, Token name, const ClassInfo* owner) {
    Variable* found = variables.Find(name);
    return found == nullptr ? nullptr : WithType(*found, owner);
}

}  // namespace

AwaitTypes::AwaitTypes() { settling = true; }
AwaitTypes::~AwaitTypes() { settling = false; }

void KeepType(const Variable& variable) {
    if (!variable.type.IsKnown()) untyped[&variable];
}

void KeepWrongValue(const Variable& variable, const Stop& stop) { untyped[&variable] = stop; }

const Variable* FindGlobal(Token name) {
    const Variable* global = FindIn(symbols.globals, name, nullptr);
    return global ? global : FindIn(symbols.constants, name, nullptr);
}

const Variable* FindField(const ClassInfo& cls, Token name) {
    const Variable* found = cls.members.Find(name);
    if (found == nullptr || found->type.IsKnown()) return found;
    ClassInfo* owner = FindClass(cls.name);
    return owner ? FindIn(owner->members, name, owner) : nullptr;
}
