#include "symbols/symbols.h"
#include "base/run.h"

#include <algorithm>

Symbols symbols;
static const PartOfRun partOfRun(symbols);

ClassInfo* FindClass(Token name) {
    ClassInfo* const* found = symbols.classIndex.Find(name);
    return found == nullptr ? nullptr : *found;
}

bool IsClass(Token name) { return FindClass(name) != nullptr; }

bool IsElement(Token name) {
    const ClassInfo* cls = FindClass(name);
    return cls && cls->isElement;
}

const Routine* FindFunction(Token name) { return symbols.functions.Find(name); }

const Routine* FindUserlibFunction(Token name) { return symbols.userlibRoutines.Find(name); }

const Routine* FindMethod(const ClassInfo& cls, Token name) { return cls.routines.Find(name); }

bool HasMainFunction() {
    return std::any_of(symbols.functions.begin(), symbols.functions.end(), [](const auto& entry) {
        return !entry.second.isExtern && Lower(entry.first->text) == "main";
    });
}

void AddOnce(std::vector<std::string>& list, const std::string& text) {
    if (symbols.listed[&list].insert(text).second) list.push_back(text);
}
