#include "build/dependency_manifest.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "base/files.h"
#include "base/paths.h"
#include "base/platform.h"
#include "base/report.h"
#include "base/run.h"
#include "base/settings.h"
#include "base/source_reader.h"
#include "base/utf8.h"
#include "outputs/atomic_file.h"
#include "symbols/modules.h"
#include "symbols/symbols.h"

namespace fs = std::filesystem;

DependencyRecord dependencies;

namespace {

std::string Stem(const std::string& mainSource) { return StripExtension(StripFolder(mainSource)); }

std::string ManifestPath(const std::string& mainSource, const std::string& outputPath) {
    return outputPath + "/." + Stem(mainSource) + ".kvl.deps";
}

std::string MainCpp(bool debug) {
    return settings.outputPath + "/" + Stem(settings.mainSource) + (debug ? ".debug" : "") + ".cpp";
}

std::string ExpectedCpp() { return MainCpp(settings.debugMode); }

// Takes the manifest apart line by line; every routine returns false at the first flaw.
class ManifestReader {
public:
    explicit ManifestReader(const std::string& content) : text(content) {}

    bool Heading(const std::string& name, std::string& rest) {
        std::string line;
        if (!Line(line) || line.compare(0, name.size(), name) != 0) return false;
        rest = line.substr(name.size());
        return true;
    }

    bool List(const std::string& heading, std::vector<std::string>& list) {
        long long count = 0;
        if (!Count(heading, count)) return false;
        for (; count > 0; --count) {
            std::string line;
            if (!Line(line)) return false;
            list.push_back(line);
        }
        return true;
    }

    bool Times(const std::string& heading, FileTimes& times) {
        long long count = 0;
        if (!Count(heading, count)) return false;
        for (; count > 0; --count) {
            std::string line;
            if (!Line(line)) return false;
            const std::size_t bar = line.find('|');
            if (bar == std::string::npos) return false;
            if (!Number(line.substr(bar + 1), times[line.substr(0, bar)])) return false;
        }
        return true;
    }

private:
    const std::string& text;
    std::size_t at = 0;

    bool Line(std::string& line) {
        if (at >= text.size()) return false;
        std::size_t end = text.find('\n', at);
        if (end == std::string::npos) end = text.size();
        line = text.substr(at, end - at);
        at = end + 1;
        return true;
    }

    // A count that is no number is 0.
    bool Count(const std::string& heading, long long& count) {
        std::string rest;
        if (!Heading(heading, rest)) return false;
        count = std::strtoll(rest.c_str(), nullptr, 10);
        return true;
    }

    // A time that is no number is damage: taken as 0 it would make the file look changed, or unchanged.
    static bool Number(const std::string& digits, std::int64_t& value) {
        if (digits.empty() || digits.find_first_not_of("-0123456789") != std::string::npos) return false;
        char* end = nullptr;
        errno = 0;
        value = std::strtoll(digits.c_str(), &end, 10);
        return errno == 0 && end == digits.c_str() + digits.size();
    }
};

std::string TimesText(const std::string& heading, const FileTimes& times) {
    std::string text = heading + std::to_string(times.size()) + "\n";
    for (const auto& [path, time] : times) text += path + "|" + std::to_string(time) + "\n";
    return text;
}

// False when something is wrong with the text; what was read before stays in the record.
bool ReadRecord(const std::string& text, DependencyRecord& record) {
    ManifestReader reader(text);
    return reader.Heading("MAIN:", record.main) && reader.List("INCLUDES:", record.includes) &&
           reader.Times("KVL_TIMES:", record.sourceTimes) && reader.Times("CPP_TIMES:", record.cppTimes) &&
           reader.Times("OBJ_TIMES:", record.objectTimes);
}

std::string RecordText(const DependencyRecord& record) {
    std::string text = "MAIN:" + record.main + "\nINCLUDES:" + std::to_string(record.includes.size()) + "\n";
    for (const std::string& include : record.includes) text += include + "\n";
    return text + TimesText("KVL_TIMES:", record.sourceTimes) + TimesText("CPP_TIMES:", record.cppTimes) +
           TimesText("OBJ_TIMES:", record.objectTimes);
}

std::int64_t recordTime =
    0;  // the file time of the record that is in force: that of the newest source it tells of
std::int64_t startOfRun = 0;  // before anything was read

std::int64_t Now() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

// The record holds whole seconds. In the second of the newest source, the file time of the record itself tells.
bool ChangedInThatSecond(const std::string& path, std::int64_t recorded) {
    constexpr std::int64_t second = 1000000000;
    const std::int64_t time = FineFileTime(path);
    return time / second == recorded && recordTime / second == recorded && time > recordTime;
}

bool SourceChanged(const std::string& path, bool& unknown) {
    const auto recorded = dependencies.sourceTimes.find(path);
    unknown = recorded == dependencies.sourceTimes.end();
    if (unknown) return false;
    return FileTime(path) > recorded->second || ChangedInThatSecond(path, recorded->second);
}

// What is edited while it is being translated counts as changed next time.
std::int64_t TimeToRecord(const std::string& path) {
    const std::int64_t time = FileTime(path), fine = FineFileTime(path);
    return fine > startOfRun && fine <= Now() ? time - 1 : time;
}

bool MainUnchanged() {
    bool unknown = false;
    const bool changed = SourceChanged(settings.mainSource, unknown);
    if (changed) Say("[QUICK BUILD] Main file changed, transpiling...");
    return !changed && !unknown;
}

// A file of the program's own may have come in the place of a module.
bool IsTakenOver(const std::string& path) {
    if (!IsModule(path) || FileTime(OwnFileFor(path)) == 0) return false;
    Say("[QUICK BUILD] Included file changed: " + OwnFileFor(path));
    return true;
}

bool IncludeUnchanged(const std::string& path) {
    if (IsTakenOver(path)) return false;
    if (FileTime(path) == 0) {
        Say("[QUICK BUILD] Included file missing: " + path);
        return false;
    }
    bool unknown = false;
    const bool changed = SourceChanged(path, unknown);
    if (changed) Say("[QUICK BUILD] Included file changed: " + path);
    return !changed && !unknown;
}

bool IncludesUnchanged() {
    for (const std::string& path : dependencies.includes) {
        if (!IncludeUnchanged(path)) return false;
    }
    return true;
}

// True when a condition that forces translation holds; says so.
bool Forces(bool condition, const char* message) {
    if (condition) Say(std::string("[QUICK BUILD] ") + message);
    return condition;
}

// The clock of file times stands still for some milliseconds: by the time of its writing, a record would seem no older
// than an edit right after it.
void DateRecordLike(const std::string& source) {
    std::error_code failed;
    const fs::file_time_type time = fs::last_write_time(PathOf(source), failed);
    if (!failed)
        fs::last_write_time(PathOf(ManifestPath(settings.mainSource, settings.outputPath)), time, failed);
}

}  // namespace

static std::string trusted;             // the record's text before it was distrusted
static fs::file_time_type trustedTime;  // and when it was written

static const PartOfRun partOfRun(dependencies, recordTime, startOfRun, trusted, trustedTime);

void DistrustDependencyManifest() {
    const std::string path = ManifestPath(settings.mainSource, settings.outputPath);
    std::error_code failed;
    DependencyRecord record;
    if (!ReadFile(path, trusted) || !ReadRecord(trusted, record)) return trusted.clear();
    trustedTime = fs::last_write_time(PathOf(path), failed);
    record.cppTimes[ExpectedCpp()];
    for (auto& [cpp, time] : record.cppTimes) time = 0;  // debug builds share files with others
    if (!WriteContents(path, RecordText(record))) fs::remove(PathOf(path), failed);
}

void TrustDependencyManifest() {
    if (trusted.empty()) return;
    const std::string path = ManifestPath(settings.mainSource, settings.outputPath);
    std::error_code failed;
    if (ReplaceFile(path, trusted)) fs::last_write_time(PathOf(path), trustedTime, failed);
}

void ResetDependencies() {
    startOfRun = Now();
    dependencies = {};
    dependencies.main = settings.mainSource;
}

bool LoadDependencyManifest(DependencyRecord& record, const std::string& mainSource,
                            const std::string& outputPath) {
    const std::string path = ManifestPath(mainSource, outputPath);
    std::string text;
    if (!ReadFile(path, text)) {
        VerboseNote("[QUICK BUILD] No previous dependency manifest found");
        return false;
    }
    recordTime = FineFileTime(path);
    const bool whole = ReadRecord(text, record);
    if (whole) VerboseNote("[QUICK BUILD] Loaded dependency manifest: " + path);
    return whole;
}

void SaveDependencyManifest(const DependencyRecord& record) {
    const std::string path = ManifestPath(record.main, settings.outputPath);
    if (!ReplaceFile(path, RecordText(record))) {
        std::fputs("[QUICK BUILD] Warning: Could not save dependency manifest\n", stderr);
        return;
    }
    VerboseNote("[QUICK BUILD] Saved dependency manifest: " + path);
}

bool HeaderBuiltForOtherTarget(const std::string& cppPath) {
    constexpr int linesRead = 20;
    SourceReader header;
    if (!header.Open(cppPath.substr(0, cppPath.size() - 4) + ".h")) return false;
    for (int i = 0; i < linesRead && !header.AtEnd(); ++i) {
        if (header.NextLine().find("KVR_PSXStd.h") != std::string::npos) return true;
    }
    return false;
}

bool CanSkipTranslation() {
    startOfRun = Now();
    const std::string cpp = ExpectedCpp();
    if (Forces(!LoadDependencyManifest(dependencies, settings.mainSource, settings.outputPath),
               "No previous build found, performing full transpilation")) {
        return false;
    }
    if (Forces(FileTime(settings.mainSource) == 0, "Main file not found, forcing full rebuild")) return false;
    if (Forces(!FileExists(cpp), "C++ file not found, forcing transpilation")) return false;
    if (!MainUnchanged() || !IncludesUnchanged()) return false;
    if (Forces(HeaderBuiltForOtherTarget(cpp), "C++ file was built for another target, transpiling...")) {
        return false;
    }
    const auto recorded = dependencies.cppTimes.find(cpp);
    if (recorded != dependencies.cppTimes.end() && recorded->second == 0) return false;  // distrusted
    Say("[QUICK BUILD] No source files changed - skipping transpilation");
    Say("[QUICK BUILD] Using existing: " + cpp);
    return true;
}

// What a killed run left of the other mode is older than this record.
static void DistrustOtherMode() {
    const std::string other = MainCpp(!settings.debugMode);
    if (FileExists(other)) dependencies.cppTimes[other] = 0;
}

void UpdateDependencyManifest() {
    dependencies.main = settings.mainSource;
    if (!symbols.includedSources.empty()) dependencies.includes = symbols.includedSources;
    std::string newest;
    const auto note = [&](const std::string& source) {
        dependencies.sourceTimes[source] = TimeToRecord(source);
        const std::int64_t time = FineFileTime(source);
        if (time <= startOfRun && (newest.empty() || time > FineFileTime(newest))) newest = source;
    };
    note(settings.mainSource);
    for (const std::string& include : dependencies.includes) note(include);
    dependencies.cppTimes[ExpectedCpp()] = FileTime(ExpectedCpp());
    DistrustOtherMode();
    SaveDependencyManifest(dependencies);
    if (!newest.empty()) DateRecordLike(newest);
}
