#include "expressions/defaults.h"

#include "base/settings.h"
#include "symbols/scopes.h"

Expr& TranslateDefault(const Routine& routine, const Parameter& parameter) {
    const FileLevelNames names;
    const std::string file = settings.currentFile;
    const int line = settings.currentLine;
    settings.currentFile = routine.file;
    settings.currentLine = routine.line;
    Expr& value = TranslateExpression(parameter.defaultValue, ExprMode::Condition);
    value.given = false;
    settings.currentFile = file;
    settings.currentLine = line;
    return value;
}
