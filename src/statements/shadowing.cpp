#include "statements/shadowing.h"

#include <algorithm>

#include "driver/settings.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"

namespace {

bool MeansSomething(const std::string& name) {
    const bool method = currentClass != nullptr && FindMethod(*currentClass, name) != nullptr;
    return method || FindVariable(name) != nullptr || FindFunction(name) != nullptr;
}

}  // namespace

std::string NameBeside(const std::string& name, TokenSpan declaration) {
    const std::string plain = SafeName(name);
    const Token written(name);
    const bool mentioned = std::find(declaration.first, declaration.last, written) != declaration.last;
    if (!mentioned || !MeansSomething(name)) return plain;
    const std::string apart = plain + "__" + std::to_string(settings.currentLine);
    const Variable* outer = FindVariable(name);
    return outer != nullptr && outer->cppName == apart ? apart + "_" : apart;
}
