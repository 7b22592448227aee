#include "lsp/main_files.h"

#include <algorithm>
#include <filesystem>

#include "base/paths.h"
#include "base/text.h"
#include "base/token_span.h"
#include "base/utf8.h"
#include "lexer/lexer.h"
#include "lsp/positions.h"
#include "lsp/uri.h"

namespace lsp {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t mostFiles = 500, mostBelow = 5000, foldersAbove = 2;

bool IsSource(const fs::path& file) { return file.extension() == ".kvl"; }

void AddSources(const fs::path& folder, std::vector<std::string>& found) {
    std::error_code ignored;
    std::vector<std::string> sources;
    for (const auto& entry : fs::directory_iterator(folder, ignored))
        if (IsSource(entry.path())) sources.push_back(NormalPath(TextOf(entry.path())));
    std::sort(sources.begin(), sources.end());
    found.insert(found.end(), sources.begin(), sources.end());
}

bool IsRoot(const fs::path& folder, const std::vector<std::string>& roots) {
    return std::find(roots.begin(), roots.end(), GenericTextOf(folder)) != roots.end();
}

// Not of a root that is the file's own folder: some editors know no other.
bool IsBelowRoot(const std::string& folder, const std::vector<std::string>& roots) {
    return std::any_of(roots.begin(), roots.end(),
                       [&folder](const std::string& root) { return StartsWith(folder, root + "/"); });
}

}  // namespace

bool DeclaresMain(const std::string& text) {
    const Lines lines(text);
    Lexer lexer;
    for (int i = 0; i < lines.Count(); ++i) {
        lexer.Cut(lines.Line(i));
        const TokenSpan tokens(lexer.tokens);
        if (tokens.KeywordAt(0) == Keyword::Function && Lower(tokens.At(1).text) == "main") return true;
    }
    return false;
}

bool MayInclude(const std::string& text, const std::string& path) {
    return text.find(StripExtension(StripFolder(path))) != std::string::npos;
}

std::vector<std::string> FilesNear(const std::string& path, const std::vector<std::string>& roots) {
    std::vector<std::string> found;
    fs::path folder = PathOf(path).parent_path();
    const bool bounded = IsBelowRoot(GenericTextOf(folder), roots);
    for (std::size_t i = 0; found.size() < mostFiles && (bounded || i <= foldersAbove); ++i) {
        AddSources(folder, found);
        if ((bounded && IsRoot(folder, roots)) || folder == folder.parent_path()) break;
        folder = folder.parent_path();
    }
    found.erase(std::remove(found.begin(), found.end(), path), found.end());
    return found;
}

std::vector<std::string> SourcesBelow(const std::vector<std::string>& folders) {
    std::vector<std::string> found;
    std::error_code failed;
    const auto options = fs::directory_options::skip_permission_denied;
    for (const std::string& root : folders) {
        fs::recursive_directory_iterator entry(PathOf(root), options, failed);
        for (; !failed && entry != fs::end(entry) && found.size() < mostBelow; entry.increment(failed)) {
            if (TextOf(entry->path().filename())[0] == '.')
                entry.disable_recursion_pending();
            else if (IsSource(entry->path()))
                found.push_back(NormalPath(TextOf(entry->path())));
        }
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

}  // namespace lsp
