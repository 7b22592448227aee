#include "statements/shadowing.h"

#include "driver/settings.h"
#include "lexer/mentions.h"
#include "symbols/identifiers.h"
#include "symbols/own_names.h"
#include "symbols/scopes.h"

namespace {

bool MeansSomething(const std::string& name) {
    const bool method = currentClass != nullptr && FindMethod(*currentClass, name) != nullptr;
    return method || FindVariable(name) != nullptr || FindFunction(name) != nullptr;
}

}  // namespace

std::string NameBeside(const std::string& name, TokenSpan declaration) {
    const std::string plain = SafeName(name);
    if (!Mentions(declaration, name) || !MeansSomething(name)) return plain;
    return FreshName(plain + "__" + std::to_string(settings.currentLine));
}
