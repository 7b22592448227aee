// Look-ups of variables whose type may have to be taken from their initialiser.
#include <unordered_set>

#include "base/report.h"
#include "base/run.h"
#include "base/settings.h"
#include "expressions/expression.h"
#include "prelude/output.h"
#include "symbols/scopes.h"
#include "symbols/symbols.h"

namespace {

// Variables whose initialiser is being typed, to notice those that depend on themselves.
std::unordered_set<const Variable*> underWay;
const PartOfRun partOfRun(underWay);

// The place and the names that hold where a variable is declared, put in force while its initialiser is
// looked at from somewhere else.
class DeclarationContext {
public:
    DeclarationContext(const Variable& variable, const ClassInfo* owner)
        : file(settings.currentFile),
          line(settings.currentLine),
          cls(currentClass),
          typed(underWay.insert(&variable).second ? &variable : nullptr) {
        settings.currentFile = variable.file;
        settings.currentLine = variable.line;
        currentClass = owner;
        PushRoutineScope();
        outerNeeds = CollectNeedsInto(&ignoredNeeds);
    }
    ~DeclarationContext() {
        underWay.erase(typed);
        CollectNeedsInto(outerNeeds);
        PopRoutineScope();
        settings.currentFile = file;
        settings.currentLine = line;
        currentClass = cls;
    }
    DeclarationContext(const DeclarationContext&) = delete;
    DeclarationContext& operator=(const DeclarationContext&) = delete;

    bool DependsOnItself() const { return typed == nullptr; }

private:
    std::string file;
    int line;
    const ClassInfo* cls;
    const Variable* typed;  // null when its initialiser is being typed already
    std::vector<const ClassInfo*> ignoredNeeds;
    std::vector<const ClassInfo*>* outerNeeds = nullptr;
};

void Settle(Variable& variable, const ClassInfo* owner) {
    if (variable.type.IsKnown() || variable.initialiser.empty()) return;
    const DeclarationContext context(variable, owner);
    if (context.DependsOnItself()) {
        ReportFatal(
            "The initial value of '" + variable.name + "' depends on itself, so its type cannot be found",
            Tokens{variable.name});
    }
    variable.type = InferType(variable.initialiser);
}

const Variable* FindIn(std::unordered_map<std::string, Variable>& variables, const std::string& name,
                       const ClassInfo* owner) {
    const auto found = variables.find(name);
    if (found == variables.end()) return nullptr;
    Settle(found->second, owner);
    return &found->second;
}

}  // namespace

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
