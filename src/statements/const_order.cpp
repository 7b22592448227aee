#include "statements/const_order.h"

#include "base/settings.h"
#include "symbols/symbols.h"

namespace {

bool InMainFile() {
    return !symbols.sourceFiles.empty() && symbols.sourceFiles.front() == settings.currentFile;
}

bool StandsBefore(const Variable& variable) {
    if (variable.file != settings.currentFile) return InMainFile();
    return variable.isReached;  // a line may declare several
}

}  // namespace

bool UsesOnlyEarlierConsts(const Expr& expr) {
    if (const Variable* variable = VariableOf(expr)) return StandsBefore(*variable);
    for (const Expr& part : PartsOf(expr))
        if (!UsesOnlyEarlierConsts(part)) return false;
    return true;
}
