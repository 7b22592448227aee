#include "statements/shadowing.h"

#include "base/settings.h"
#include "lexer/mentions.h"
#include "lexer/source_lines.h"
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
    // Lines of a routine's parts may have the numbers of its own.
    const auto part = symbols.parts.find(FileId(settings.currentFile));
    const std::string file = part == symbols.parts.end() ? "" : std::to_string(part->second) + "_";
    return FreshName(plain + "__" + file + std::to_string(settings.currentLine));
}
