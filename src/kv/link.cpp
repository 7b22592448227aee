#include "kv/link.h"

#include <filesystem>
#include <vector>

#include "base/command_quoting.h"
#include "base/utf8.h"
#include "kv/compiler_call.h"
#include "kv/inputs.h"
#include "kv/platform.h"
#include "kv/stamp.h"

namespace fs = std::filesystem;

namespace {

// The flags that are worth a try when the program is linked.
std::vector<std::string> QuickLinking(const Job& job) {
    if (!job.linkerFlags.empty())
        return LinkerRecordFlags(PathForTool(job.build.linkDependencies, job.sourceFolder));
    // Linkers differ in small ways: for a program that is to stay, the usual one.
    return job.options.optimisation == "-O0" && !IsForWindows(job.options) ? QuickLinkerFlags()
                                                                           : std::vector<std::string>();
}

bool RunLinker(const Job& job, const CompileJob& compile, std::string& output) {
    std::error_code ignored;
    fs::remove(PathOf(job.build.linkDependencies), ignored);
    fs::remove(PathOf(compile.newProgram), ignored);
    return RunCompiler(job, LinkCommand(job.compiler, compile), "Linking " + ProgramName(job.source), output);
}

bool Link(Job& job, CompileJob& compile, std::string& output) {
    compile.quickLinking = QuickLinking(job);
    if (RunLinker(job, compile, output)) return true;
    if (compile.quickLinking.empty() || compile.isTrial) return false;
    compile.quickLinking.clear();
    return RunLinker(job, compile, output);
}

}  // namespace

bool MakeProgram(Job& job, CompileJob& compile, std::string& output) {
    job.objects = compile.objects;
    const std::string command = ReadableCommandLine(LinkCommand(job.compiler, compile));
    if (StampHolds(job.build.linkStamp, command)) return true;
    std::error_code ignored;
    fs::remove(PathOf(job.build.linkStamp), ignored);
    if (!Link(job, compile, output)) return false;
    output.clear();
    if (!Finish(job, compile.newProgram, job.build.program)) return false;
    StampFiles files;
    files.sources = FilesReadByLinker(job);
    if (files.sources.empty() && !job.linkerFlags.empty()) return true;
    for (const std::string& program : CompilerFiles(job.compiler)) files.sources.push_back(program);
    files.products = compile.objects;
    files.products.push_back(job.build.program);
    WriteStamp(job.build.linkStamp, job.build.started, command, files);
    return true;
}
