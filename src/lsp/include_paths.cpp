#include "lsp/include_paths.h"

#include <algorithm>
#include <filesystem>

#include "base/paths.h"
#include "base/text.h"
#include "base/utf8.h"
#include "lexer/lexer.h"

namespace lsp {

namespace {

namespace fs = std::filesystem;

void AddFiles(const fs::path& folder, std::vector<std::string>& names, bool withFolders = true) {
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder, ignored)) {
        const std::string name = TextOf(entry.path().filename());
        if (withFolders && entry.is_directory(ignored) && name[0] != '.') names.push_back(name + "/");
        if (entry.path().extension() == ".kvl") names.push_back(name);
    }
}

}  // namespace

bool IsIncludedName(std::string_view before, std::string& name) {
    const std::size_t quote = before.find('"');
    if (quote == std::string_view::npos || before.find('"', quote + 1) != std::string_view::npos)
        return false;
    const std::string_view word = "include";
    const std::size_t start = std::min(before.find_first_not_of(" \t"), quote);
    const std::string head = Lower(before.substr(start, quote - start));
    name = std::string(before.substr(quote + 1));
    return StartsWith(head, word) && head.find_first_not_of(" \t", word.size()) == std::string::npos;
}

std::vector<std::string> NamesToInclude(const std::string& main, const std::string& installation,
                                        const std::string& begun) {
    std::vector<std::string> names;
    AddFiles(PathOf(FolderOf(main)) / PathOf(FolderOf(begun)), names);
    // Folders among the modules hold parts of them.
    const std::string folder = FolderOf(begun);
    AddFiles(PathOf(installation) / "lib" / PathOf(folder), names, folder.empty());
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

}  // namespace lsp
