#include "driver/build.h"

#include <optional>

#include "base/files.h"
#include "base/journal.h"
#include "base/paths.h"
#include "base/platform.h"
#include "base/report.h"
#include "base/settings.h"
#include "build/build_manifest.h"
#include "build/dependency_manifest.h"
#include "build/write_program.h"
#include "library/phases.h"
#include "linking/deploy.h"
#include "linking/linker_flags.h"
#include "outputs/output_files.h"
#include "statements/program.h"
#include "symbols/symbols.h"

namespace {

// The folder of the executable in the characters that every platform call takes.
std::string ExecutableFolder() {
    std::string folder;
    for (const char c : FolderOf(ExecutablePath())) {
        if (c >= 1 && static_cast<unsigned char>(c) <= 127) folder += c;
    }
    return folder;
}

void MoveToInstallationRoot() {
    const std::string folder = ExecutableFolder();
    if (!ChangeFolder(folder)) {
        Say("Failed to change to: " + folder);
        ReportFatal("Cannot change working directory to exe directory");
    }
    if (!ChangeFolder("..")) ReportFatal("Cannot change to parent directory (Korvel root)");
}

void CheckRequiredArguments() {
    if (settings.mainSource.empty()) ReportFatal("No source file specified!");
    if (settings.outputPath.empty()) ReportFatal("No output directory specified!");
}

// The flags go beside the main source; the user gets the command that builds the executable.
void WriteLinkerFlags() {
    if (symbols.linkerFlags.empty()) return;
    const std::string stem = StripExtension(settings.mainSource);
    const std::string path = LinkerFlagsPath();
    std::string flags;
    for (const std::string& flag : symbols.linkerFlags) flags += " " + flag;
    if (!WriteContents(path, flags.substr(1) + "\n")) {
        Say("Warning: Could not create " + path);
        return;
    }
    AddOnce(symbols.generatedFiles, path);
    Say("\nLinker flags written to " + path);
    Say("Compile with: g++ -std=c++11 -o " + stem + " " + stem + ".cpp" + flags + "\n");
}

void RecordExecutable() {
    const std::string stem = StripExtension(settings.mainSource);
    AddOnce(symbols.generatedFiles, stem);
    AddOnce(symbols.generatedFiles, stem + ".exe");
}

void Translate() {
    RunPhases();
    const Told told = TellRun();
    if (told.mistake != nullptr) {
        WriteFinished(told.files);
        throw Stop(*told.mistake);
    }
    WriteProgram();
    Say("");
    CheckMainFunction();
}

void Build() {
    DistrustDependencyManifest();
    CleanPreviousBuild(settings.outputPath);
    if (settings.quickBuild) ResetDependencies();
    Translate();
    WriteLinkerFlags();
    RecordExecutable();
    CopyUserlibDLLs(settings.outputPath);
}

void BuildUnlessUnchanged() {
    if (!settings.quickBuild || !CanSkipTranslation()) Build();
    WriteBuildManifest(settings.outputPath);
    SettleOutputs();
    // Nothing may change any more once the record vouches for the outputs.
    if (settings.quickBuild)
        UpdateDependencyManifest();
    else
        TrustDependencyManifest();
}

void Check() {
    Translate();
    CopyUserlibDLLs(settings.outputPath);  // which says what is missing
}

void RunSteps(std::optional<FolderLock>& alone) {
    MoveToInstallationRoot();
    CheckRequiredArguments();
    if (settings.checkOnly) {
        Check();
    } else {
        alone.emplace(settings.outputPath);
        BuildUnlessUnchanged();
    }
    Say("Done! \\o/\n");
}

}  // namespace

int BuildProgram() {
    std::optional<FolderLock> alone;  // held until the last output of a run with a mistake is settled, too
    try {
        RunSteps(alone);
        return 0;
    } catch (const Stop& stop) {
        SayQuoted(stop);
        SettleOutputs();
        return 1;
    }
}
