#include "symbols/name_scan.h"

#include <algorithm>
#include <filesystem>
#include <unordered_map>
#include <unordered_set>

#include "driver/paths.h"
#include "driver/report.h"
#include "driver/run.h"
#include "driver/settings.h"
#include "driver/utf8.h"
#include "symbols/identifiers.h"
#include "symbols/inline_cpp.h"
#include "symbols/source_lines.h"
#include "symbols/symbols.h"

namespace {

// Files per base name.
std::unordered_map<std::string, int> baseNames;
// The sources by file name, in lower case.
std::unordered_multimap<std::string, std::string> sourcesByName;
const PartOfRun partOfRun(baseNames, sourcesByName);

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

class NameScan {
public:
    // `name` is how the chain of Includes calls the file.
    void ScanFile(const std::string& path, const std::string& name) {
        const std::string id = FileId(path);
        if (!known.insert(id).second) return;
        SourceLines lines(Reading::Names);
        if (!lines.Open(path)) return;
        symbols.sourceFiles.push_back(path);
        ++baseNames[BaseName(path)];
        sourcesByName.emplace(Lower(StripFolder(path)), path);
        chain.push_back({id, name});
        while (lines.Next()) {
            for (const TokenSpan& statement : lines.Statements())
                ScanStatement(statement, path, lines.Line());
            if (included.empty()) continue;
            const std::vector<std::string> names = std::move(included);
            included.clear();
            for (const std::string& include : names) FollowInclude(include, path, lines.Line());
        }
        chain.pop_back();
    }

private:
    // C++ compilers stop at 200 and count the headers that somebody's own C++ includes at the innermost level.
    static constexpr std::size_t deepest = 150;

    struct Link {
        std::string id, name;
    };
    std::vector<Link> chain;  // the files under way, the main one first
    std::unordered_set<std::string> known;
    std::vector<std::string> included;  // by the current line

    void ScanStatement(TokenSpan tokens, const std::string& path, int line) {
        if (tokens.size() < 2) return;
        const Keyword keyword = tokens.KeywordAt(0);
        if (keyword == Keyword::Type || keyword == Keyword::Element) {
            AddClass(tokens[1], keyword == Keyword::Element, path, line);
        } else if (keyword == Keyword::Include && IsQuoted(tokens[1])) {
            included.emplace_back(Unquoted(tokens[1]));
        }
    }

    static void AddClass(const std::string& name, bool isElement, const std::string& path, int line) {
        if (IsClass(name)) return;
        ClassInfo& cls = symbols.classes.emplace_back();
        cls.name = name;
        cls.isElement = isElement;
        cls.cppName = SafeName(name);
        cls.sourceFile = path;
        cls.line = line;
        symbols.classIndex.emplace(name, &cls);
    }

    void FollowInclude(const std::string& name, const std::string& from, int line) {
        std::string written = name;
        std::replace(written.begin(), written.end(), '\\', '/');
        const std::string path = settings.sourceFolder + "/" + written;
        const std::string id = FileId(path);
        const auto same = [&id](const Link& link) { return link.id == id; };
        if (known.count(id) != 0 && std::any_of(chain.begin(), chain.end(), same))
            FailCircle(id, name, from, line);
        if (known.count(id) == 0 && chain.size() > deepest)
            Fail("Includes are nested more than " + std::to_string(deepest) +
                     " deep. Let the main source include some of them",
                 from, line);
        ScanFile(path, name);
    }

    [[noreturn]] void FailCircle(const std::string& id, const std::string& name, const std::string& from,
                                 int line) {
        std::string text;
        for (const Link& link : chain) {
            if (!text.empty() || link.id == id) text += link.name + " -> ";
        }
        Fail("Include circle: " + text + name, from, line);
    }

    [[noreturn]] static void Fail(const std::string& message, const std::string& from, int line) {
        settings.currentFile = from;
        settings.currentLine = line;
        ReportFatal(message);
    }
};

}  // namespace

void CollectNames(const std::string& mainSource) { NameScan().ScanFile(mainSource, StripFolder(mainSource)); }

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
