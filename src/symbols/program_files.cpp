#include "symbols/program_files.h"

#include <algorithm>
#include <filesystem>
#include <unordered_map>

#include "base/paths.h"
#include "base/run.h"
#include "base/settings.h"
#include "base/source_reader.h"
#include "base/utf8.h"
#include "lexer/source_lines.h"
#include "symbols/file_places.h"
#include "symbols/identifiers.h"
#include "symbols/symbols.h"

namespace {

// Files per base name.
std::unordered_map<std::string, int> baseNames;
// The sources by file name, in lower case.
std::unordered_multimap<std::string, std::string> sourcesByName;
// The paths of Includes that have been looked for, by what they are written like.
std::unordered_map<std::string, std::string> includePaths;
const PartOfRun partOfRun(baseNames, sourcesByName, includePaths);

// As far as header guards tell names apart.
std::string BaseName(const std::string& source) {
    std::string name = StripExtension(StripFolder(source));
    for (char& c : name) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        const bool kept = (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (!kept) c = '_';
    }
    return name;
}

}  // namespace

void AddSourceFile(const std::string& path) {
    symbols.sourceFiles.push_back(path);
    ++baseNames[BaseName(path)];
    sourcesByName.emplace(Lower(StripFolder(path)), path);
}

std::optional<std::string> IncludedName(TokenSpan statement) {
    if (statement.KeywordAt(0) != Keyword::Include || !IsQuoted(statement[1])) return {};
    return std::string(Unquoted(statement[1]));
}

std::string PathOfInclude(const std::string& name) {
    std::string& path = includePaths[name];
    if (path.empty()) path = FirstOf(PlacesOfInclude(name));
    return path;
}

bool IsPart(const std::string& source) {
    return !symbols.parts.empty() && symbols.parts.count(FileId(source)) != 0;
}

bool IsSource(const std::string& path) {
    const auto [begin, end] = sourcesByName.equal_range(Lower(StripFolder(path)));
    return std::any_of(begin, end, [&path](const auto& source) {
        std::error_code failed;
        return std::filesystem::equivalent(PathOf(source.second), PathOf(path), failed) && !failed;
    });
}

bool BaseNameIsShared(const std::string& source) {
    const auto count = baseNames.find(BaseName(source));
    return count != baseNames.end() && count->second > 1;
}

bool IsBaseName(const std::string& name) { return baseNames.count(BaseName(name + ".kvl")) != 0; }
