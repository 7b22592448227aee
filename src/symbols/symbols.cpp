#include "symbols/symbols.h"
#include "base/run.h"

#include <algorithm>

Symbols symbols;
static const PartOfRun partOfRun(symbols);

ClassInfo* FindClass(const std::string& name) {
    const auto found = symbols.classIndex.find(name);
    return found == symbols.classIndex.end() ? nullptr : found->second;
}

bool IsClass(const std::string& name) { return FindClass(name) != nullptr; }

bool IsElement(const std::string& name) {
    const ClassInfo* cls = FindClass(name);
    return cls && cls->isElement;
}

const Routine* FindFunction(const std::string& name) {
    const auto found = symbols.functions.find(name);
    return found == symbols.functions.end() ? nullptr : &found->second;
}

const Routine* FindUserlibFunction(const std::string& name) {
    const auto found = symbols.userlibRoutines.find(name);
    return found == symbols.userlibRoutines.end() ? nullptr : &found->second;
}

const Routine* FindMethod(const ClassInfo& cls, const std::string& name) {
    const auto found = cls.routines.find(name);
    return found == cls.routines.end() ? nullptr : &found->second;
}

bool HasMainFunction() {
    return std::any_of(symbols.functions.begin(), symbols.functions.end(), [](const auto& entry) {
        return !entry.second.isExtern && Lower(entry.first) == "main";
    });
}

void AddOnce(std::vector<std::string>& list, const std::string& text) {
    if (symbols.listed[&list].insert(text).second) list.push_back(text);
}
