#include "linking/deploy.h"

#include <filesystem>

#include "base/files.h"
#include "base/platform.h"
#include "base/report.h"
#include "base/settings.h"
#include "base/source_reader.h"
#include "base/utf8.h"
#include "symbols/file_places.h"
#include "symbols/symbols.h"

namespace {

// Read whole before the destination is opened: with the userlibs folder as output both are one file.
void CopyDll(const std::string& name, const std::string& outputPath) {
    std::string content;
    const std::vector<std::string> places = PlacesOfUserlib(name);
    const std::string path = FirstOf(places);
    if (IsNoFile(path)) return WarnOfProgram("userlibs/" + name + " is no file", "  ");
    if (!ReadFile(path, content)) {
        // Libraries of the system are found by its loader.
        if (!IsSilent() || !SystemHasLibrary(name))
            WarnOfProgram("DLL not found in userlibs/: " + name, "  ", LookedFor(places));
        return;
    }
    if (settings.checkOnly) return;
    const std::string target = outputPath + "/" + name;
    std::error_code failed;  // which the next step meets, too
    std::filesystem::create_directories(PathOf(target).parent_path(), failed);
    if (!WriteContents(target, content)) ReportFatal("Cannot write DLL to output directory: " + target);
    VerboseNote("  Copied: " + name + " -> " + outputPath + "/");
}

}  // namespace

void CopyUserlibDLLs(const std::string& outputPath) {
    if (symbols.userlibDLLs.empty()) return;
    VerboseNote("\nCopying userlib DLLs to output directory...");
    for (const UserlibDll& dll : symbols.userlibDLLs) CopyDll(dll.name, outputPath);
}
