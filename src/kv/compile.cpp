#include "kv/compile.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "base/utf8.h"
#include "kv/command_quoting.h"
#include "kv/compiler_report.h"
#include "kv/diagnostics.h"
#include "kv/inputs.h"
#include "kv/platform.h"
#include "kv/precompiled.h"
#include "kv/progress.h"
#include "kv/stamp.h"
#include "kv/toolchain.h"
#include "kv/write_file.h"

namespace fs = std::filesystem;

namespace {

// What the user can mend of what the compiler said.
std::vector<Diagnostic> Mistakes(const Job& job, const std::string& output) {
    return ExplainCompilerOutput(output, job.translation.sources, job.build.cppFolder, job.sourceFolder);
}

// A mistake in the Korvel source never gets here: the compiler refuses it. What remains is C++ written by the user, a
// library that is missing, or a fault of the translation.
void ShowFailure(const Job& job, const std::string& output) {
    const std::vector<Diagnostic> mistakes = Mistakes(job, output);
    for (Diagnostic diagnostic : mistakes) {
        if (!diagnostic.file.empty()) diagnostic.file = ShortPath(diagnostic.file, job.typedFolder);
        Show(diagnostic);
    }
    Diagnostic summary;
    summary.file = ShortPath(job.source, job.typedFolder);
    summary.severity = mistakes.empty() ? Severity::Error : Severity::Note;
    summary.message = mistakes.empty()
                          ? "the program was translated, but the C++ compiler refused the result. This is "
                            "a fault of the\nKorvel compiler (or of C++ in an InlineCpp block), not of "
                            "your Korvel code.\n"
                          : "";
    summary.message += "all that the C++ compiler said: " + job.build.compilerErrors;
    if (!job.options.verbose) summary.message += " (--verbose shows it)";
    Show(summary);
}

// One call of the compiler. `output` receives what it said on its error stream.
bool RunCompiler(const Job& job, const std::vector<std::string>& command, const std::string& work,
                 std::string& output) {
    ProcessRequest request;
    request.arguments = command;
    request.workingFolder = job.sourceFolder;  // -L and the like in Linker lines count from there
    request.outputFile = job.build.compilerOutput;
    request.errorFile = job.build.compilerErrors;
    if (job.options.verbose) std::fprintf(stderr, "%s\n", ReadableCommandLine(request.arguments).c_str());
    Progress progress(work);
    request.whileWaiting = progress.Ticks();
    std::string problem;
    const int status = RunProcess(request, problem);
    progress.End();
    output = problem.empty() ? ReadWhole(request.errorFile) : "cannot execute " + command[0] + ": " + problem;
    if (!problem.empty()) std::ofstream(PathOf(request.errorFile), std::ios::binary) << output << "\n";
    if (job.options.verbose) std::fprintf(stderr, "%s", output.c_str());
    constexpr int signalsFrom = 128, lastSignal = 64;
    if (status > signalsFrom && status <= signalsFrom + lastSignal)
        output += "it was ended by signal " + std::to_string(status - signalsFrom) + "\n";
    return problem.empty() && status == 0;
}

CompileJob CompileJobOf(const Job& job) {
    CompileJob compile;
    compile.mainCpp = job.mainCpp;
    // What was made before stays until the new results are complete.
    compile.object = job.build.object;
    compile.newObject = job.build.object + ".new";
    // A name that every compiler can be told, however the program is called.
    compile.newProgram = TextOf(PathOf(job.build.folder) / ("program.new" + ProgramSuffix(job)));
    compile.newDependencies = job.build.dependencies + ".new";
    compile.includeFolder = TextOf(PathOf(job.installation) / "include");
    compile.sourceFolder = job.sourceFolder;
    compile.optimisation = job.options.optimisation;
    compile.debug = job.options.debug;
    compile.safe = job.options.safe;
    compile.isForWindows = IsForWindows(job.options);
    compile.isStatic = job.options.isStatic;
    compile.places = TellsPlaces(job.options);
    compile.failureCode = job.failureCode;
    compile.debuggerCode = job.debuggerCode;
    compile.cppFolder = job.build.cppFolder;
    compile.linkerFlags = job.linkerFlags;
    return compile;
}

PrecompileJob PrecompileJobOf(const Job& job) {
    PrecompileJob precompile;
    precompile.compiler = job.compiler;
    precompile.includeFolder = TextOf(PathOf(job.installation) / "include");
    precompile.optimisation = job.options.optimisation;
    precompile.debug = job.options.debug;
    precompile.places = TellsPlaces(job.options);
    precompile.verbose = job.options.verbose;
    return precompile;
}

// Finds or makes the precompiled header that serves the job's compilation, if any.
void ChoosePrelude(Job& job) {
    // A compilation for speed spends its time elsewhere.
    if (job.options.optimisation == "-O0") job.prelude = PreparePrelude(PrecompileJobOf(job));
}

using CommandBuilder = std::vector<std::string> (*)(const std::vector<std::string>& compiler,
                                                    const CompileJob& job);

void ShowFailureUnlessDisturbed(Job& job, const std::string& output) {
    if (!IsDisturbed(job.build) && !GiveUpPlace(job.build)) ShowFailure(job, output);
}

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

// Puts a complete result into its place.
bool Finish(const Job& job, const std::string& newFile, const std::string& file) {
    std::error_code failed;
    fs::rename(PathOf(newFile), PathOf(file), failed);
    if (failed && !IsDisturbed(job.build)) ShowProblem("cannot write " + file + ": " + failed.message());
    return !failed;
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

bool Link(Job& job, CompileJob& compile) {
    std::string output;
    compile.quickLinking = QuickLinking(job);
    if (RunLinker(job, compile, output)) return true;
    if (!compile.quickLinking.empty()) {
        compile.quickLinking.clear();
        if (RunLinker(job, compile, output)) return true;
    }
    ShowFailureUnlessDisturbed(job, output);
    return false;
}

// Links unless the program was linked from this very object before.
bool MakeProgram(Job& job, CompileJob& compile) {
    const std::string command = ReadableCommandLine(LinkCommand(job.compiler, compile));
    if (StampHolds(job.build.linkStamp, command)) return true;
    std::error_code ignored;
    fs::remove(PathOf(job.build.linkStamp), ignored);
    if (!Link(job, compile) || !Finish(job, compile.newProgram, job.build.program)) return false;
    StampFiles files;
    files.sources = FilesReadByLinker(job);
    if (files.sources.empty() && !job.linkerFlags.empty()) return true;
    for (const std::string& program : CompilerFiles(job.compiler)) files.sources.push_back(program);
    files.products = {job.build.object, job.build.program};
    WriteStamp(job.build.linkStamp, job.build.started, command, files);
    return true;
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
        if (!MakeObject(job, compile) || !MakeProgram(job, compile)) return false;
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
