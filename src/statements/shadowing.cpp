#include "statements/shadowing.h"

#include <algorithm>
#include <unordered_set>

#include "base/settings.h"
#include "lexer/cpp_lines.h"
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

// A Return that frees an array by its plain name must not meet another one.
bool IsFreed(const State& state, const std::string& cppName) {
    const auto& arrays = state.routine.localArrays;
    return std::any_of(arrays.begin(), arrays.end(), [&cppName](const LocalArray& array) {
        return array.ownsSlots && array.variable->cppName == cppName;
    });
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

void NoteNameApart(State& state, const std::string& name, const std::string& cppName) {
    const std::string plain = SafeName(name);
    if (cppName == plain || !symbols.inlineCpp || IsFreed(state, plain)) return;
    std::string indent(static_cast<std::size_t>(state.place.indent), '\t');
    state.routine.namesApart.push_back({name, cppName, OpenSlot(state), std::move(indent)});
}

void GivePlainNames(State& state, const std::string& inlineCpp) {
    if (state.routine.namesApart.empty()) return;
    std::unordered_set<std::string> names;
    CppLines line;
    line.onToken = [&names](std::string_view token) { names.emplace(token); };
    line.Read(inlineCpp);
    for (const NameApart& apart : state.routine.namesApart) {
        const Variable* meant = FindLocal(apart.name);
        if (meant == nullptr || meant->cppName != apart.cppName) continue;
        const std::string plain = SafeName(apart.name);
        if (names.count(plain) == 0) continue;
        state.routine.slots[apart.slot].text =
            apart.indent + "auto& " + plain + " = " + apart.cppName + ";\n";
    }
}
