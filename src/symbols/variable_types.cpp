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

const Variable* FindIn(std::unordered_map<std::string, Variable>& variables, const std::string& name,
                       const ClassInfo* owner) {
    const auto found = variables.find(name);
    return found == variables.end() ? nullptr : WithType(found->second, owner);
}

}  // namespace

AwaitTypes::AwaitTypes() { settling = true; }
AwaitTypes::~AwaitTypes() { settling = false; }

void KeepType(const Variable& variable) {
    if (!variable.type.IsKnown()) untyped[&variable];
}

void KeepWrongValue(const Variable& variable, const Stop& stop) { untyped[&variable] = stop; }

const Variable* FindGlobal(const std::string& name) {
    const Variable* global = FindIn(symbols.globals, name, nullptr);
    return global ? global : FindIn(symbols.constants, name, nullptr);
}

const Variable* FindField(const ClassInfo& cls, const std::string& name) {
    const auto found = cls.members.find(name);
    if (found == cls.members.end()) return nullptr;
    if (found->second.type.IsKnown()) return &found->second;
    ClassInfo* owner = FindClass(cls.name);
    return owner ? FindIn(owner->members, name, owner) : nullptr;
}
