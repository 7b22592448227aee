#include "build/build_manifest.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/files.h"
#include "base/paths.h"
#include "base/places.h"
#include "base/platform.h"
#include "base/report.h"
#include "base/settings.h"
#include "base/source_reader.h"
#include "base/text.h"
#include "base/utf8.h"
#include "lexer/lexer.h"
#include "outputs/atomic_file.h"
#include "outputs/output_files.h"
#include "symbols/program_files.h"
#include "symbols/symbols.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* sourceExtension = ".kvl";

// Those of files that often come again are left to the end of the run.
constexpr std::string_view extensionsThatComeAgain[] = {".cpp", ".h", ".units", ".places"};

std::string ManifestPath(const std::string& outputPath) {
    return outputPath + "/." + StripFolder(settings.mainSource) + ".manifest";
}

std::string WithForwardSlashes(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

std::string WithoutTrailingSlash(std::string path) {
    if (!path.empty() && path.back() == '/') path.pop_back();
    return path;
}

// Full, with forward slashes, in lower case: how a manifest line and a folder are compared.
std::string Normalised(const std::string& path) {
    return WithoutTrailingSlash(Lower(WithForwardSlashes(AbsolutePath(path))));
}

// The root of the file system holds only its own files here, not everything.
bool LiesIn(const std::string& file, const std::string& folder) {
    if (folder.empty()) return file.rfind('/') == 0;
    return file == folder || StartsWith(file, folder + "/");
}

// From the last dot of the file's name on; empty without one.
std::string ExtensionOf(const std::string& path) {
    const std::string name = StripFolder(path);
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? std::string() : name.substr(dot);
}

bool ComesAgain(const std::string& extension) {
    const auto end = std::end(extensionsThatComeAgain);
    return std::find(std::begin(extensionsThatComeAgain), end, extension) != end;
}

bool IsGenerated(const std::string& extension) { return ComesAgain(extension) || extension == ".js"; }

bool SameFile(const std::string& a, const std::string& b) {
    std::error_code failed;
    return fs::equivalent(PathOf(a), PathOf(b), failed) && !failed;
}

std::string SourcePath(const std::string& includeName) { return settings.sourceFolder + "/" + includeName; }

// The names that the Include lines of a file give.
std::vector<std::string> IncludesOf(const std::string& path) {
    std::vector<std::string> names;
    SourceReader source;
    source.Open(path);
    while (!source.AtEnd())
        if (const auto name = IncludedName(Split(source.NextLine()))) names.push_back(*name);
    return names;
}

// The names of all files that the program includes, directly or not.
std::unordered_set<std::string> IncludedNames() {
    std::vector<std::string> open = IncludesOf(settings.mainSource);
    std::unordered_set<std::string> all;
    while (!open.empty()) {
        const std::string name = open.back();
        open.pop_back();
        if (!all.insert(name).second) continue;
        for (const std::string& next : IncludesOf(SourcePath(name))) open.push_back(next);
    }
    return all;
}

class Cleaner {
public:
    Cleaner(const std::string& outputPath, Cleaned cleaned) : output(outputPath), what(cleaned) {
        const std::string source = WithForwardSlashes(settings.mainSource);
        const std::size_t slash = source.rfind('/');
        const std::string sourceFolder = slash == std::string::npos ? "." : source.substr(0, slash + 1);
        for (const std::string& folder : {outputPath, sourceFolder}) {
            folders.push_back(Normalised(folder));
            realFolders.push_back(Resolved(folder));
        }
    }

    void Clean(const std::string& line) {
        facts = Examine(line);
        if (IsSource(line)) {
            Say("  Refusing to delete source file listed in manifest: " + line);
        } else if (IsInside(line) || IsBesideItsSource(line)) {
            Delete(line);
        } else if (FileExists(line) && !IsPutOff(line)) {
            Say("  Not deleting " + line + " - it is outside this build's folders" +
                " (a manifest from another copy of the tree?)");
        }
    }

    int Count() const { return count; }

private:
    std::string output;
    Cleaned what;
    std::vector<std::string> folders;      // as compared by text
    std::vector<std::string> realFolders;  // links followed
    // The folders of the lines.
    std::unordered_map<std::string, std::string> normalised, resolved;
    FileFacts mainSource = Examine(settings.mainSource);
    FileFacts facts;  // of the line under way
    int count = 0;

    bool IsSource(const std::string& line) const {
        const std::string lower = Lower(line);
        return (lower.size() > 4 && EndsWith(lower, sourceExtension)) || IsMainSource(line);
    }

    bool IsMainSource(const std::string& line) const {
        if (facts.kind == FileFacts::Kind::Missing) return false;
        const auto regular = FileFacts::Kind::Regular;
        if (facts.kind == regular && mainSource.kind == regular)
            return facts.device == mainSource.device && facts.number == mainSource.number;
        return SameFile(line, settings.mainSource);
    }

    // By its text, and also where the links in it lead.
    bool IsInside(const std::string& line) {
        const std::string path = NormalisedHere(line);
        const std::string real = PlaceHere(line);
        bool byText = false, really = false;
        for (const std::string& folder : folders) byText = byText || LiesIn(path, folder);
        for (const std::string& folder : realFolders) really = really || LiesIn(real, folder);
        return byText && (really || path == folders[0] || path == folders[1]);
    }

    // A file generated for an Include that leads out of the folders: it lies beside the .kvl.
    bool IsBesideItsSource(const std::string& line) {
        const std::string extension = ExtensionOf(line);
        if (!IsGenerated(extension)) return false;
        const std::string stem = line.substr(0, line.size() - extension.size());
        if (!FileExists(stem + sourceExtension)) return false;
        const std::string place = PlaceHere(stem);
        const std::unordered_set<std::string> names = IncludedNames();
        return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
            return PlaceHere(output + "/" + StripExtension(WithForwardSlashes(name))) == place;
        });
    }

    // What stands before the name, where that takes no more than a look at the slash between them: as a rule. Else empty.
    static std::string PlainFolderOf(const std::string& path) {
        const std::size_t slash = path.rfind('/');
        if (slash == 0 || slash == std::string::npos || path.find('\\') != std::string::npos) return {};
        const char before = path[slash - 1];
        const bool hasName = slash + 1 < path.size() && path[slash + 1] != '.';
        return hasName && before != '/' && before != ':' ? path.substr(0, slash) : std::string();
    }

    // Normalised, with what is known of the folder.
    std::string NormalisedHere(const std::string& path) {
        const std::string folder = PlainFolderOf(path);
        if (folder.empty()) return Normalised(path);
        const auto [known, isNew] = normalised.emplace(folder, std::string());
        if (isNew) known->second = Normalised(folder);
        return known->second + Lower(path.substr(folder.size()));
    }

    // PlaceOf, with what is known of the folder.
    std::string PlaceHere(const std::string& path) {
        std::string parent = PlainFolderOf(path);
        if (parent.empty()) parent = TextOf(PathOf(path).parent_path());
        return ResolvedFolder(parent.empty() ? "." : parent) + "/" + StripFolder(path);
    }

    const std::string& ResolvedFolder(const std::string& folder) {
        const auto [known, isNew] = resolved.emplace(folder, std::string());
        if (isNew) known->second = Resolved(folder);
        return known->second;
    }

    // Whether a build of the main source may have left the file behind.
    bool IsProduct(const std::string& line) {
        if (IsGenerated(ExtensionOf(line))) return true;
        if (what == Cleaned::Outputs) return false;
        const std::string place = PlaceHere(line);
        const std::string stem = StripExtension(settings.mainSource);
        return place == PlaceHere(stem) || place == PlaceHere(stem + ".exe") ||
               place == PlaceHere(stem + ".linkflags");
    }

    bool IsRegular(const std::string& line) const {
        if (facts.kind != FileFacts::Kind::Unknown) return facts.kind == FileFacts::Kind::Regular;
        std::error_code failed;
        return fs::is_regular_file(fs::symlink_status(PathOf(line), failed));
    }

    void Delete(const std::string& line) {
        std::error_code failed;
        if (!IsProduct(line) || !IsRegular(line)) return;
        if (IsGenerated(ExtensionOf(line)) && !IsOurs(line)) return;
        if (IsPutOff(line, facts)) return;  // counted already
        const bool mayComeAgain = ComesAgain(ExtensionOf(line));
        if (mayComeAgain && PutOffDeletion(line, facts)) {
            ++count;
        } else if (fs::remove(PathOf(line), failed) && !failed) {
            ++count;
        }
    }
};

}  // namespace

void WriteBuildManifest(const std::string& outputPath) {
    if (symbols.generatedFiles.empty()) return;
    std::string text;
    for (const std::string& file : symbols.generatedFiles) text += file + "\n";
    const std::string path = ManifestPath(outputPath);
    const bool stood = TakeOver(path);
    if (ReplaceFile(path, text)) return;
    std::error_code failed;
    if (stood) fs::remove(PathOf(path), failed);
    WarnOfProgram("Could not create build manifest");
}

void CleanPreviousBuild(const std::string& outputPath, Cleaned what) {
    const std::string path = ManifestPath(outputPath);
    SourceReader manifest;
    if (!manifest.Open(path)) return;
    Say("Cleaning previous build artifacts...");
    Cleaner cleaner(outputPath, what);
    while (!manifest.AtEnd()) {
        const std::string line = manifest.NextLine();
        if (!line.empty()) cleaner.Clean(line);
    }
    std::error_code failed;
    if (!PutOffDeletion(path)) fs::remove(PathOf(path), failed);
    if (cleaner.Count() > 0) {
        Say("Cleaned " + std::to_string(cleaner.Count()) + " file(s) from previous build");
    }
}
