#include "statements/output_places.h"

#include <filesystem>
#include <unordered_map>

#include "build/output_files.h"
#include "driver/paths.h"
#include "driver/places.h"
#include "driver/report.h"
#include "driver/run.h"
#include "driver/settings.h"
#include "driver/utf8.h"
#include "lexer/source_reader.h"
#include "prelude/header.h"
#include "symbols/name_scan.h"

namespace fs = std::filesystem;

namespace {

std::unordered_map<std::string, bool> outsideFolders;  // answers of LiesOutside
const PartOfRun partOfRun(outsideFolders);

// An Include that climbs ("../lib/util.kvl"), or a link in its path, leads out of the output folder.
bool LiesOutside(const std::string& folder) {
    const auto [entry, isNew] = outsideFolders.emplace(folder, false);
    if (isNew && folder != settings.outputPath) entry->second = LeadsOutOf(settings.outputPath, folder);
    return entry->second;
}

bool BeginsAlike(const std::string& a, const std::string& b) {
    const std::size_t length = std::min(a.size(), b.size());
    return a.compare(0, length, b, 0, length) == 0;
}

// Of this build's predecessor, or with the opening that only our outputs have (as far as a run that was ended
// half-way got with it).
bool IsOurs(const FileOutput& out, const std::string& path) {
    std::error_code failed;
    if (!fs::exists(fs::symlink_status(PathOf(path), failed)) || IsPutOff(path)) return true;
    std::string header, text;
    if (fs::is_symlink(PathOf(path), failed) || !ReadFile(path, text)) return false;
    if (path == HeaderPath(out)) return IsHeaderText(text);
    return BeginsAlike(text, "#include \"" + out.base + ".h\"\n") && ReadFile(HeaderPath(out), header) &&
           IsHeaderText(header);
}

}  // namespace

// The outputs are included by their names, between double quotes, where C++ knows no escapes.
static void CheckNames(const FileOutput& out) {
    const std::string name = StripFolder(out.source);
    const std::string no = "A source cannot be called '" + name + "': ";
    if (StripExtension(name).find_first_not_of('.') == std::string::npos)
        ReportFatal(no + "nothing is left of it to name its outputs");
    for (const char* part : {"\"", "\n", "\r", "??"})
        if (out.header.find(part) != std::string::npos)
            ReportFatal(no + "C++ could not include its outputs. Rename it or its folder");
}

void CheckOutputPlaces(const FileOutput& out) {
    if (settings.currentFile.empty()) settings.currentFile = out.source;
    CheckNames(out);
    const bool outside = !out.isMain && LiesOutside(out.folder);
    for (const std::string& path : {HeaderPath(out), CppPath(out)}) {
        if (IsSource(path))
            ReportFatal("'" + path +
                        "' is a source of this program, and its outputs would overwrite it. "
                        "Use another output folder");
        if (outside && !IsOurs(out, path))
            ReportFatal("'" + path +
                        "' lies outside the output folder and is not ours to overwrite. "
                        "Move it away, or rename '" +
                        StripFolder(out.source) + "'");
    }
}
