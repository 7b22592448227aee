#include "symbols/modules.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "base/paths.h"
#include "base/settings.h"
#include "base/source_reader.h"
#include "base/text.h"
#include "base/utf8.h"
#include "symbols/symbols.h"

namespace {

constexpr const char* library = "lib/";
constexpr const char* modules = "std/";  // in the library

bool NamesModule(const std::string& name) {
    return StartsWith(name, modules) && name.find("..") == std::string::npos;
}

}  // namespace

std::string PlaceOfModule(const std::string& includeName) {
    return NamesModule(includeName) ? InstallationPath(library + includeName) : std::string();
}

std::string PathOfModule(const std::string& includeName) {
    const std::string module = PlaceOfModule(includeName);
    return IsFile(module) ? module : std::string();
}

bool IsModule(const std::string& path) {
    return StartsWith(path, InstallationPath(std::string(library) + modules));
}

bool IsPureModule(const std::string& path) { return IsModule(path) && StripFolder(path) == "text.kvl"; }

std::string OwnFileFor(const std::string& module) {
    return settings.sourceFolder + "/" + module.substr(InstallationPath(library).size());
}

bool HasForeignFunctions() {
    return std::any_of(symbols.externFunctions.begin(), symbols.externFunctions.end(), [](const auto& entry) {
        const Routine* routine = FindFunction(entry.first);
        return routine == nullptr || !IsModule(routine->file);
    });
}

std::set<std::string> AllModules() {
    std::set<std::string> found;
    std::error_code failed;
    const std::string folder = InstallationPath(std::string(library) + modules);
    for (std::filesystem::directory_iterator entry(PathOf(folder), failed), end; !failed && entry != end;
         entry.increment(failed))
        if (EndsWith(TextOf(entry->path()), ".kvl")) found.insert(modules + TextOf(entry->path().filename()));
    return found;
}

std::string ModulesLike(const std::string& includeName) {
    std::string name = includeName;
    std::replace(name.begin(), name.end(), '\\', '/');
    if (!NamesModule(name)) return {};
    std::string text;
    for (const std::string& module : AllModules()) text += (text.empty() ? "" : ", ") + module;
    return text;
}
