#include "kv/make.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "kv/command_quoting.h"
#include "kv/compile.h"
#include "kv/diagnostics.h"
#include "kv/platform.h"
#include "kv/stamp.h"
#include "kv/translate.h"

namespace fs = std::filesystem;

namespace {

// Everything that the program depends on beside its sources and the headers that the compiler read.
std::vector<std::string> ToolFiles(const Job& job) {
    const fs::path installation = job.installation;
    std::vector<std::string> files = {job.kv, job.kvt, (installation / "config" / "keywords.txt").string(),
                                      (installation / "config" / "cpp.txt").string()};
    for (const std::string& word : job.compiler) {
        if (fs::path(word).is_absolute()) files.push_back(word);
    }
    std::error_code failed;
    for (const auto& entry : fs::directory_iterator(installation / "userlibs", failed)) {
        if (entry.is_regular_file(failed)) files.push_back(entry.path().string());
    }
    return files;
}

// Records what the program was made from. A program linked with libraries of the user's is made anew each time,
// since nobody knows which files these flags reach; so is one with warnings, which shows them again.
void Remember(const Job& job, const std::string& commands) {
    if (job.hadWarnings || !job.linkerFlags.empty()) return;
    std::vector<std::string> files = SourcesOf(DependencyRecord(job));
    if (files.empty()) return;
    std::vector<std::string> products = {job.build.program, job.mainCpp};
    for (const std::string& file : FilesInMakeRule(ReadWhole(job.build.dependencies))) {
        const fs::path path = (fs::path(job.sourceFolder) / file).lexically_normal();
        const bool generated = path.string().compare(0, job.build.cppFolder.size(), job.build.cppFolder) == 0;
        if (!generated) files.push_back(path.string());
    }
    for (const std::string& file : ToolFiles(job)) files.push_back(file);
    for (const std::string& library : SharedLibraries(job)) {
        products.push_back((fs::path(job.build.program).parent_path() / library).string());
    }
    WriteStamp(job.build.stamp, job.build.started, commands, files, products);
}

bool CopyTo(const fs::path& from, const fs::path& to) {
    std::error_code failed;
    const fs::path unfinished = to.parent_path() / ("." + to.filename().string() + ".new");
    fs::copy_file(from, unfinished, fs::copy_options::overwrite_existing, failed);
    if (!failed) fs::rename(unfinished, to, failed);
    if (!failed) return true;
    std::error_code ignored;
    fs::remove(unfinished, ignored);
    ShowProblem("cannot write " + to.string() + ": " + failed.message());
    return false;
}

}  // namespace

bool Make(Job& job) {
    const FileLock lock(job.build.lock);
    ChoosePrelude(job);
    const std::string commands = ReadableCommandLine(TranslateCommand(job)) + " && " +
                                 ReadableCommandLine(JobCompileCommand(job, "."));
    if (StampHolds(job.build.stamp, commands)) {
        if (job.options.verbose) std::fprintf(stderr, "kv: nothing has changed\n");
        return true;
    }
    std::error_code ignored;
    fs::remove(job.build.stamp, ignored);
    std::ofstream(job.build.started, std::ios::binary) << "kv\n";
    if (!Translate(job) || !Compile(job)) return false;
    Remember(job, commands);
    return true;
}

bool Install(const Job& job) {
    fs::path target = job.options.outputFile.empty() ? fs::path(job.sourceFolder) / ProgramName(job.source)
                                                     : fs::path(job.typedFolder) / job.options.outputFile;
    if (target.extension() != executableSuffix && *executableSuffix != '\0') target += executableSuffix;
    target = target.lexically_normal();
    std::error_code failed;
    if (fs::is_directory(target, failed)) {
        ShowProblem(target.string() + " is a folder; name the program with -o");
        return false;
    }
    if (fs::equivalent(target, job.source, failed)) {
        ShowProblem("the program would overwrite its source; name it with -o");
        return false;
    }
    if (!fs::is_directory(target.parent_path(), failed)) {
        ShowProblem("the folder " + target.parent_path().string() + " does not exist");
        return false;
    }
    if (!CopyTo(job.build.program, target)) return false;
    for (const std::string& library : SharedLibraries(job)) {
        if (!CopyTo(fs::path(job.build.cppFolder) / library, target.parent_path() / library)) return false;
    }
    std::printf("built %s\n", ShortPath(target.string(), job.typedFolder).c_str());
    return true;
}
