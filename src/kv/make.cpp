#include "kv/make.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "base/command_quoting.h"
#include "base/utf8.h"
#include "kv/compile.h"
#include "kv/diagnostics.h"
#include "kv/inputs.h"
#include "kv/platform.h"
#include "kv/stamp.h"
#include "kv/translate.h"
#include "kv/translator.h"

namespace fs = std::filesystem;

namespace {

// Warnings without a line tell of shared libraries that are missing, and may come.
bool LacksLibrary(const Job& job) {
    const auto& said = job.translation.diagnostics;
    return std::any_of(said.begin(), said.end(), [](const auto& diagnostic) { return diagnostic.line == 0; });
}

// Records what the program was made from. With libraries of the user's it is made anew each time unless the linker
// says which files its flags reach; so is one that lacks a library.
void Remember(const Job& job, const std::string& commands) {
    StampFiles files;
    FilesRead read;
    files.sources = FilesTranslated(job);
    const std::vector<std::string> libraries = FilesReadByLinker(job);
    if (LacksLibrary(job) || (!job.linkerFlags.empty() && libraries.empty())) return;
    if (!FilesReadByCompiler(job, read)) return;
    for (const std::vector<std::string>& more : {read.headers, libraries, ToolFiles(job)}) {
        files.sources.insert(files.sources.end(), more.begin(), more.end());
    }
    files.products = {job.build.program, job.mainCpp, job.build.translation};
    files.rivals = RivalsOfTranslation(job);
    files.rivals.insert(files.rivals.end(), read.rivals.begin(), read.rivals.end());
    for (const std::string& library : SharedLibraries(job)) {
        files.products.push_back(TextOf(PathOf(job.build.program).parent_path() / PathOf(library)));
    }
    WriteStamp(job.build.stamp, job.build.started, commands, files);
}

bool MakeInFolder(Job& job) {
    ChooseRuntimeCode(job);
    const std::string commands = ReadableCommandLine(TranslatorCommand(job)) + " && " + CompilationOf(job);
    if (StampHolds(job.build.stamp, commands) && LoadTranslation(job)) {
        if (job.options.verbose) std::fprintf(stderr, "kv: nothing has changed\n");
        return ShowWarnings(job);
    }
    std::error_code ignored;
    fs::remove(PathOf(job.build.stamp), ignored);
    if (!BeginBuild(job.build) || !Translate(job) || !Compile(job)) return false;
    Remember(job, commands);
    return true;
}

}  // namespace

bool Make(Job& job) { return WorkInFolder(job, MakeInFolder); }
