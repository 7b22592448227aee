#include "linking/linker_flags.h"

#include "base/paths.h"
#include "base/report.h"
#include "base/run.h"
#include "base/settings.h"
#include "base/token_text.h"
#include "symbols/modules.h"
#include "symbols/program_files.h"
#include "symbols/symbols.h"

static bool linksForeign = false;
static const PartOfRun partOfRun(linksForeign);

static std::string CurrentFolder() {
    const std::string& file = settings.currentFile;
    return file.find_first_of("/\\") == std::string::npos ? "." : FolderOf(file);
}

std::string LinkerFlagsPath() { return StripExtension(settings.mainSource) + ".linkflags"; }

void AddLinkerFlag(const std::string& token) {
    std::string flag(Unquoted(token));
    if (flag == "-L.") flag = "-L\"" + CurrentFolder() + "\"";
    // Lines that say the same all count: linkers take some flags in pairs.
    if (IsSource(LinkerFlagsPath()))
        ReportFatal("'" + LinkerFlagsPath() +
                    "' is a source of this program, and the linker flags would overwrite it. Rename it");
    symbols.linkerFlags.push_back(flag);
    linksForeign = linksForeign || !IsModule(settings.currentFile);
    Say("  - Adding linker flag: " + flag);
}

bool LinksForeignCode() { return linksForeign; }
