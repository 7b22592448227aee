#include "statements/const_order.h"

#include "base/settings.h"
#include "symbols/symbols.h"

namespace {

bool InMainFile() {
    return !symbols.sourceFiles.empty() && symbols.sourceFiles.front() == settings.currentFile;
}

bool StandsBefore(const Variable& variable) {
    if (variable.file != settings.currentFile) return InMainFile();
    return variable.line <= settings.currentLine;
}

}  // namespace

bool UsesOnlyEarlierConsts(TokenSpan tokens) {
    for (const std::string& token : tokens) {
        const Variable* variable = FindGlobal(token);
        if (variable != nullptr && !StandsBefore(*variable)) return false;
    }
    return true;
}

bool IsConstantToCpp(TokenSpan tokens) {
    if (!settings.safeMode || settings.debugMode) return true;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (tokens.SignAt(i) == '/' || tokens.KeywordAt(i) == Keyword::Mod) return false;
        const Variable* variable = FindGlobal(tokens[i]);
        if (variable != nullptr && variable->isConst && !IsConstantToCpp(variable->initialiser)) return false;
    }
    return true;
}
