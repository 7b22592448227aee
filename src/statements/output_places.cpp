#include "statements/output_places.h"

#include <filesystem>

#include "base/paths.h"
#include "base/report.h"
#include "base/settings.h"
#include "base/utf8.h"
#include "outputs/output_files.h"
#include "symbols/program_files.h"

static bool IsInTheWay(const std::string& path) {
    std::error_code failed;
    return std::filesystem::exists(std::filesystem::symlink_status(PathOf(path), failed)) && !IsOurs(path);
}

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
    for (const std::string& path : {HeaderPath(out), CppPath(out)}) {
        if (IsSource(path))
            ReportFatal("'" + path +
                        "' is a source of this program, and its outputs would overwrite it. "
                        "Use another output folder");
        const bool isWritten = !out.headerOnly || path == HeaderPath(out);
        if (isWritten && IsInTheWay(path))
            ReportFatal("'" + path +
                        "' lies outside the output folder and is not ours to overwrite. "
                        "Move it away, or rename '" +
                        StripFolder(out.source) + "'");
    }
}
