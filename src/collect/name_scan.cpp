#include "collect/name_scan.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "base/paths.h"
#include "base/report.h"
#include "base/settings.h"
#include "lexer/source_lines.h"
#include "symbols/identifiers.h"
#include "symbols/program_files.h"
#include "symbols/symbols.h"

namespace {

class NameScan {
public:
    // `name` is how the chain of Includes calls the file; `isPart` when one inside a routine does.
    void ScanFile(const std::string& path, const std::string& name, bool isPart) {
        const std::string id = FileId(path);
        if (!known.insert(id).second) return;
        SourceLines lines(Reading::Names);
        if (!lines.Open(path)) return;
        AddSourceFile(path);
        chain.push_back({id, name});
        Place place;
        place.inRoutine = isPart;
        while (lines.Next()) {
            for (const TokenSpan statement : lines.Statements())
                ScanStatement(statement, path, lines.Line(), place);
            if (included.empty()) continue;
            if (!std::exchange(place.cutAhead, true)) CutIncluded(path);
            const std::vector<Included> files = std::move(included);
            included.clear();
            for (const Included& file : files) FollowInclude(file, path, lines.Line());
        }
        chain.pop_back();
    }

private:
    // C++ compilers stop at 200 and count the headers that somebody's own C++ includes at the innermost level.
    static constexpr std::size_t deepest = 150;

    struct Link {
        std::string id, name;
    };
    // Where a file has got to.
    struct Place {
        bool inExtern = false, inRoutine = false;
        bool cutAhead = false;  // the files that it includes have been cut
    };
    struct Included {
        std::string name;
        bool inRoutine;
    };
    std::vector<Link> chain;  // the files under way, the main one first
    std::unordered_set<std::string> known;
    std::unordered_set<std::string> atTopLevel;  // files included there
    std::vector<Included> included;              // by the current line
    int partCount = 0;

    static void CutIncluded(const std::string& path) {
        SourceLines lines(Reading::Names);
        std::vector<std::string> paths;
        for (lines.Open(path); lines.Next();)
            for (const TokenSpan statement : lines.Statements())
                if (const auto name = IncludedName(statement)) paths.push_back(PathOfInclude(*name));
        CutFiles(paths);
    }

    void ScanStatement(TokenSpan tokens, const std::string& path, int line, Place& place) {
        const Keyword keyword = tokens.KeywordAt(0);
        if (!Has(keyword, trait::collected)) return;
        if (keyword == Keyword::Extern || keyword == Keyword::EndExtern)
            place.inExtern = keyword == Keyword::Extern;
        if (Has(keyword, trait::routine)) place.inRoutine = !place.inExtern;
        if (Has(BlockOf(keyword), trait::routine)) place.inRoutine = false;
        if (tokens.size() < 2) return;
        if (Has(keyword, trait::classes)) {
            AddClass(tokens[1], keyword == Keyword::Element, path, line);
        } else if (const auto name = IncludedName(tokens)) {
            included.push_back({*name, place.inRoutine});
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
        symbols.classIndex.Add(name, &cls);
    }

    void NotePlace(const std::string& id, bool inRoutine) {
        if (!inRoutine) {
            atTopLevel.insert(id);
            symbols.parts.erase(id);
        } else if (atTopLevel.count(id) == 0 && symbols.parts.count(id) == 0) {
            symbols.parts.emplace(id, ++partCount);
        }
    }

    void FollowInclude(const Included& file, const std::string& from, int line) {
        const std::string& name = file.name;
        const std::string path = PathOfInclude(name);
        const std::string id = FileId(path);
        NotePlace(id, file.inRoutine);
        const auto same = [&id](const Link& link) { return link.id == id; };
        if (known.count(id) != 0 && std::any_of(chain.begin(), chain.end(), same))
            FailCircle(id, name, from, line);
        if (known.count(id) == 0 && chain.size() > deepest)
            Fail("Includes are nested more than " + std::to_string(deepest) +
                     " deep. Let the main source include some of them",
                 from, line, name);
        ScanFile(path, name, file.inRoutine);
    }

    [[noreturn]] void FailCircle(const std::string& id, const std::string& name, const std::string& from,
                                 int line) {
        std::string text;
        for (const Link& link : chain) {
            if (!text.empty() || link.id == id) text += link.name + " -> ";
        }
        Fail("Include circle: " + text + name, from, line, name);
    }

    [[noreturn]] static void Fail(const std::string& message, const std::string& from, int line,
                                  const std::string& name) {
        settings.currentFile = from;
        settings.currentLine = line;
        ReportFatal(message, Tokens{"\"" + name + "\""});
    }
};

}  // namespace

void CollectNames(const std::string& mainSource) {
    NameScan().ScanFile(mainSource, StripFolder(mainSource), false);
}
