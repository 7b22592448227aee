#include "collect/inference.h"

#include <algorithm>

#include "base/report.h"
#include "base/settings.h"
#include "expressions/expression.h"
#include "prelude/output.h"
#include "symbols/scopes.h"
#include "symbols/variable_types.h"

namespace {

// The place and the names that hold where a variable is declared, put in force while its initialiser is
// looked at from somewhere else.
class DeclarationContext {
public:
    DeclarationContext(const Variable& variable, const ClassInfo* owner)
        : place(variable.file, variable.line), cls(currentClass) {
        currentClass = owner;
        PushRoutineScope();
        outerNeeds = CollectNeedsInto(&ignoredNeeds);
    }
    ~DeclarationContext() {
        CollectNeedsInto(outerNeeds);
        PopRoutineScope();
        currentClass = cls;
    }
    DeclarationContext(const DeclarationContext&) = delete;
    DeclarationContext& operator=(const DeclarationContext&) = delete;

private:
    AtPlace place;
    const ClassInfo* cls;
    std::vector<const ClassInfo*> ignoredNeeds;
    std::vector<const ClassInfo*>* outerNeeds = nullptr;
};

void Infer(Variable& variable, const ClassInfo* owner) {
    const DeclarationContext context(variable, owner);
    const AwaitTypes awaiting;
    variable.type = InferType(variable.initialiser);
}

Stop DependsOnItself(const Variable& variable) {
    const DeclarationContext context(variable, nullptr);
    try {
        ReportFatal(
            "The initial value of '" + variable.name + "' depends on itself, so its type cannot be found",
            Tokens{variable.name});
    } catch (const Stop& stop) {
        return stop;
    }
}

}  // namespace

void SettleType(Variable& variable, const ClassInfo* owner) {
    if (variable.type.IsKnown() || variable.initialiser.empty()) return;
    std::vector<AwaitedType> open = {{&variable, owner}};  // the later ones come first
    while (!open.empty()) {
        Variable& current = *open.back().variable;
        try {
            Infer(current, open.back().owner);
            KeepType(current);
            open.pop_back();
        } catch (const AwaitedType& first) {
            const auto same = [&first](const AwaitedType& other) { return other.variable == first.variable; };
            if (std::any_of(open.begin(), open.end(), same))
                KeepWrongValue(*first.variable, DependsOnItself(*first.variable));
            else
                open.push_back(first);
        } catch (const Stop& stop) {
            KeepWrongValue(current, stop);
            open.pop_back();
        }
    }
}

void SettleTypeOf(const std::string& name) {
    for (auto* variables : {&symbols.globals, &symbols.constants})
        if (Variable* variable = variables->Find(name)) return SettleType(*variable, nullptr);
}
