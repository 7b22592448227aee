#include "statements/shadowing.h"

#include <algorithm>

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

// A Return in the new variable's block still has to free such an array, by its name.
bool HidesFreedArray(const State& state, const std::string& name) {
    return std::any_of(
        state.routine.localArrays.begin(), state.routine.localArrays.end(),
        [&name](const LocalArray& array) { return array.ownsSlots && array.variable->name == name; });
}

}  // namespace

std::string NameBeside(const State& state, const std::string& name, TokenSpan declaration) {
    const std::string plain = SafeName(name);
    const bool mentioned = Mentions(declaration, name) && MeansSomething(name);
    if (!mentioned && !HidesFreedArray(state, name)) return plain;
    // Lines of a routine's parts may have the numbers of its own.
    const auto part = symbols.parts.find(FileId(settings.currentFile));
    const std::string file = part == symbols.parts.end() ? "" : std::to_string(part->second) + "_";
    return FreshName(plain + "__" + file + std::to_string(settings.currentLine));
}
