#include "kv/job.h"

#include <filesystem>

#include "base/paths.h"
#include "base/utf8.h"
#include "kv/diagnostics.h"
#include "kv/platform.h"
#include "kv/progress.h"
#include "kv/toolchain.h"

namespace fs = std::filesystem;

namespace {

const int attempts = 5;

bool FindInstallation(Job& job) {
    job.kv = OwnExecutable();
    const fs::path binFolder = PathOf(job.kv).parent_path();
    job.installation = TextOf(binFolder.parent_path());
    std::error_code failed;
    const fs::path config = PathOf(job.installation) / "config";
    if (!job.kv.empty() && fs::is_directory(config, failed)) return true;
    return Refuse("the installation is not whole: there is no " + TextOf(config));
}

// Ways of building that must not overwrite one another's files.
std::string Variant(const Options& options) {
    const std::string checks = IsForDebugger(options) ? "debugger"
                               : options.debug        ? options.safe ? "safedebug" : "debug"
                               : options.safe         ? "safe"
                                                      : "";
    const std::string mode = checks + (IsFast(options) ? "fast" : checks.empty() ? "plain" : "");
    const std::string kind =
        (options.target.empty() ? "" : "-" + options.target) + (options.isStatic ? "-static" : "");
    const std::string way = NeedsCompiler(options) ? mode + options.optimisation + kind : mode;
    return options.command == Command::check ? "check-" + way : way;
}

}  // namespace

// The source as a full path; "game" means game.kvl, beside which a program of that name may lie.
bool FindSource(const std::string& name, const std::string& typedFolder, std::string& found) {
    std::error_code failed;
    fs::path source = PathOf(typedFolder) / PathOf(name);
    const bool hasExtension = source.extension() == ".kvl";
    const bool isWhole = hasExtension && fs::exists(source, failed);
    if (!isWhole && fs::is_regular_file(PathOf(TextOf(source) + ".kvl"), failed)) source += ".kvl";
    if (!fs::exists(source, failed)) {
        return Refuse("cannot find " + name + (hasExtension ? "" : " or " + name + ".kvl"));
    }
    if (!fs::is_regular_file(source, failed)) {
        ShowProblem(name + " is no file; name the main file of a program");
        return false;
    }
    // Records of what was read have a line for each file.
    if (TextOf(source).find_first_of("\r\n") != std::string::npos) {
        ShowProblem("a source cannot have a line break in its name, nor in that of its folder; rename it");
        return false;
    }
    found = TextOf(source.lexically_normal());
    return true;
}

bool PrepareJob(const Options& options, Job& job) {
    std::error_code failed;
    job.options = options;
    job.typedFolder = TextOf(fs::current_path(failed));
    if (failed) {
        return Refuse("the folder in which kv was called does not exist any more");
    }
    if (!FindSource(options.source, job.typedFolder, job.source) || !FindInstallation(job)) return false;
    if (IsForDebugger(options)) {
        job.options.debug = true;
        job.options.plain = false;  // failures are to be met
    }
    job.sourceFolder = TextOf(PathOf(job.source).parent_path());
    if (job.options.optimisation.empty()) {
        job.options.optimisation = IsToStay(options) ? "-O2" : "-O0";
    }
    std::string problem;
    if (NeedsCompiler(options))
        job.compiler = IsForWindows(options) ? FindCompilerForWindows(problem) : FindCompiler(problem);
    if (!problem.empty()) {
        return Refuse(problem);
    }
    return PrepareFolder(job);
}

std::vector<std::string> ProgramCommand(const Job& job) {
    std::vector<std::string> command = {job.build.program};
    command.insert(command.end(), job.options.arguments.begin(), job.options.arguments.end());
    return command;
}

std::string ProgramSuffix(const Job& job) { return IsForWindows(job.options) ? ".exe" : executableSuffix; }

void TellFolder(const Job& job) {
    std::string folder = FolderOf(ShortPath(job.source, job.typedFolder));
    if (!folder.empty()) folder += '/';
    // What tells of failures takes its own away as the program starts, so that programs which that starts do not have it.
    for (const char* const variable : {"KORVEL_FOLDER", "KORVEL_TESTS"})
        PutEnvironmentVariable(variable, folder);
}

bool PrepareFolder(Job& job) {
    std::string keepCpp;
    if (!job.options.keepCppFolder.empty()) {
        keepCpp = TextOf((PathOf(job.typedFolder) / PathOf(job.options.keepCppFolder)).lexically_normal());
    }
    std::string problem;
    if (!PrepareBuildFolder(job.source, Variant(job.options), keepCpp, ProgramSuffix(job), job.build,
                            problem)) {
        return Refuse(problem);
    }
    const std::string mainFile = ProgramName(job.source) + (job.options.debug ? ".debug.cpp" : ".cpp");
    job.mainCpp = TextOf(PathOf(job.build.cppFolder) / PathOf(mainFile));
    return true;
}

bool WorkInFolder(Job& job, bool (*work)(Job&)) {
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        const FileLock lock(job.build.lock, Progress("Waiting for another kv").Ticks());
        if (!lock.HasFile()) {
            GiveUpLock(job.build);
            if (!PrepareFolder(job)) return false;
            continue;
        }
        const FileLock cppLock(job.build.cppLock, Progress("Waiting for another kv").Ticks());
        if (!job.build.cppLock.empty() && !cppLock.HasFile()) {
            ShowProblem("cannot lock " + job.build.cppLock +
                        "; remove what lies there, or name another folder");
            return false;
        }
        if (work(job)) return true;
        if (!IsDisturbed(job.build)) return false;
        if (!PrepareFolder(job)) return false;
    }
    return Refuse("somebody removes " + job.build.folder + " while kv works there");
}
