#include "symbols/module_names.h"

#include "base/run.h"
#include "lexer/source_lines.h"
#include "symbols/modules.h"
#include "symbols/symbols.h"

namespace {

struct Offered {
    std::map<std::string, std::string> modules;  // by name
    bool isRead = false;
};
Offered offered;
const PartOfRun partOfRun(offered);

void ReadModule(const std::string& module) {
    SourceLines lines(Reading::Names);
    if (!lines.Open(PathOfModule(module))) return;
    while (lines.Next())
        for (const TokenSpan statement : lines.Statements()) {
            const Keyword first = statement.KeywordAt(0);
            if (first == Keyword::Function || first == Keyword::Type)
                offered.modules.emplace(statement[1], module);
        }
}

}  // namespace

const std::map<std::string, std::string>& ModuleNames() {
    if (!offered.isRead)
        for (const std::string& module : AllModules()) ReadModule(module);
    offered.isRead = true;
    return offered.modules;
}

std::string IncludeFor(const std::string& name) {
    const auto found = ModuleNames().find(name);
    if (found == ModuleNames().end() || FindFunction(name) != nullptr || IsClass(name)) return {};
    return "Include \"" + found->second + "\"";
}
