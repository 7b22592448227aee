#include "kv/compile.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "base/command_quoting.h"
#include "base/utf8.h"
#include "kv/compile_units.h"
#include "kv/compiler_call.h"
#include "kv/diagnostics.h"
#include "kv/inputs.h"
#include "kv/link.h"
#include "kv/precompiled.h"
#include "kv/stamp.h"
#include "kv/toolchain.h"
#include "kv/write_file.h"

namespace fs = std::filesystem;

namespace {

// Finds or makes the precompiled header that serves the job's compilation, if any.
void ChoosePrelude(Job& job) {
    // A compilation for speed spends its time elsewhere.
    if (job.options.optimisation == "-O0") job.prelude = PreparePrelude(PrecompileJobOf(job));
}

using CommandBuilder = std::vector<std::string> (*)(const std::vector<std::string>& compiler,
                                                    const CompileJob& job);

// Begins a compilation: what an earlier one has left does not count any more.
bool RunCompilation(const Job& job, const CompileJob& compile, CommandBuilder commandOf,
                    std::string& output) {
    std::error_code ignored;
    for (const std::string& file :
         {job.build.dependencies, compile.newDependencies, compile.newObject, compile.newProgram}) {
        fs::remove(PathOf(file), ignored);
    }
    const std::string work = "Compiling " + TextOf(PathOf(job.mainCpp).filename());
    return RunCompiler(job, commandOf(job.compiler, compile), work, output);
}

// Compiles with the precompiled header. When that fails, for whatever reason, the header is put to the test: if all
// goes well without it, it is made anew the next time.
bool CompileOn(Job& job, CompileJob& compile, CommandBuilder commandOf) {
    std::string output;
    ChoosePrelude(job);
    compile.prelude = job.prelude;
    bool done = RunCompilation(job, compile, commandOf, output);
    if (!done && !job.prelude.empty() && !IsDisturbed(job.build)) {
        compile.prelude.clear();
        done = RunCompilation(job, compile, commandOf, output);
        if (done) DropPrelude(job.prelude);
        job.prelude.clear();
    }
    if (!done) ShowFailureUnlessDisturbed(job, output);
    return done;
}

// Puts the record of what was read into its place; a compiler may not have written one.
void FinishRecord(const Job& job, const CompileJob& compile) {
    std::error_code ignored;
    fs::rename(PathOf(compile.newDependencies), PathOf(job.build.dependencies), ignored);
}

// Compiles the generated C++ unless this very text was compiled the last time.
bool MakeObject(Job& job, CompileJob& compile) {
    const std::string command = ReadableCommandLine(CompileCommand(job.compiler, compile));
    if (StampHolds(job.build.objectStamp, command)) {
        if (job.options.verbose) std::fprintf(stderr, "kv: the C++ has not changed\n");
        return true;
    }
    std::error_code ignored;
    fs::remove(PathOf(job.build.objectStamp), ignored);
    if (!CompileOn(job, compile, CompileCommand)) return false;
    if (!Finish(job, compile.newObject, job.build.object)) return false;
    FinishRecord(job, compile);
    FilesRead read;
    if (!FilesReadByCompiler(job, read)) return true;
    StampFiles files;
    files.sources = ToolFiles(job);
    files.sources.insert(files.sources.end(), read.headers.begin(), read.headers.end());
    files.generated = read.generated;
    files.products = {job.build.object};
    files.rivals = read.rivals;
    WriteStamp(job.build.objectStamp, job.build.started, command, files);
    return true;
}

bool MakeFromOneUnit(Job& job, CompileJob& compile) {
    if (!MakeObject(job, compile)) return false;
    std::string output;
    if (MakeProgram(job, compile, output)) return true;
    if (!output.empty()) ShowFailureUnlessDisturbed(job, output);
    return false;
}

bool CopyLibraries(const Job& job) {
    const fs::path folder = PathOf(job.build.program).parent_path();
    for (const std::string& library : SharedLibraries(job)) {
        std::error_code failed;  // which the next step meets, too
        fs::create_directories((folder / PathOf(library)).parent_path(), failed);
        if (!CopyOver(PathOf(job.build.cppFolder) / PathOf(library), folder / PathOf(library))) return false;
    }
    return true;
}

// A program without the system's loader cannot load libraries.
bool CanLinkStatically(const Job& job) {
    if (!job.options.isStatic || job.translation.libraries.empty() || IsForWindows(job.options)) return true;
    ShowProblem("--static does not go with libraries that the program loads while it runs: " +
                job.translation.libraries[0]);
    return false;
}

bool IsBelowProgram(const fs::path& name) {
    return !name.empty() && name.is_relative() && std::find(name.begin(), name.end(), "..") == name.end();
}

}  // namespace

std::vector<std::string> SharedLibraries(const Job& job) {
    std::vector<std::string> libraries;
    for (const std::string& name : job.translation.libraries) {
        std::error_code failed;
        if (IsBelowProgram(PathOf(name)) &&
            fs::is_regular_file(PathOf(job.build.cppFolder) / PathOf(name), failed))
            libraries.push_back(name);
    }
    return libraries;
}

void ChooseRuntimeCode(Job& job) {
    if (TellsPlaces(job.options)) job.failureCode = PrepareFailureCode(PrecompileJobOf(job));
    if (IsForDebugger(job.options)) job.debuggerCode = PrepareDebuggerCode(PrecompileJobOf(job));
}

std::string CompilationOf(const Job& job) {
    return ReadableCommandLine(WholeCommand(job.compiler, CompileJobOf(job)));
}

bool CheckCpp(Job& job) {
    ChooseRuntimeCode(job);  // the flags depend on it
    CompileJob compile = CompileJobOf(job);
    return CompileOn(job, compile, SyntaxCommand);
}

bool Compile(Job& job) {
    if (!CanLinkStatically(job)) return false;
    CompileJob compile = CompileJobOf(job);
    compile.loadsLibraries = !job.translation.libraries.empty();
    if (CanLinkApart(job.linkerFlags)) {
        const bool isMade = MakeFromUnits(job, compile);
        if (IsDisturbed(job.build)) return false;
        if (!isMade && !MakeFromOneUnit(job, compile)) return false;
    } else {
        std::error_code ignored;
        fs::remove(PathOf(job.build.linkDependencies), ignored);
        fs::remove(PathOf(job.build.linkStamp), ignored);
        if (!CompileOn(job, compile, WholeCommand)) return false;
        if (!Finish(job, compile.newProgram, job.build.program)) return false;
        FinishRecord(job, compile);
    }
    return CopyLibraries(job);
}
