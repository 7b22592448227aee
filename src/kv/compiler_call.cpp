#include "kv/compiler_call.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "base/command_quoting.h"
#include "base/utf8.h"
#include "kv/compiler_report.h"
#include "kv/diagnostics.h"
#include "kv/platform.h"
#include "kv/progress.h"

namespace fs = std::filesystem;

namespace {

// What the user can mend of what the compiler said.
std::vector<Diagnostic> Mistakes(const Job& job, const std::string& output) {
    return ExplainCompilerOutput(output, job.translation.sources, job.build.cppFolder, job.sourceFolder,
                                 job.options.isStatic);
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

// Where what a call said goes, when several are made at once.
std::string ErrorsBeside(const std::string& target) { return target + ".errors"; }

void ShowErrors(const std::vector<std::string>& targets) {
    for (const std::string& target : targets)
        std::fprintf(stderr, "%s", ReadWhole(ErrorsBeside(target)).c_str());
}

}  // namespace

CompileJob CompileJobOf(const Job& job) {
    CompileJob compile;
    compile.mainCpp = job.mainCpp;
    // What was made before stays until the new results are complete.
    compile.objects = {job.build.object};
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

std::size_t AtOnce(const Options& options) {
    if (options.jobs.empty()) return CoreCount();
    return std::min<std::size_t>(std::strtoul(options.jobs.c_str(), nullptr, 10), mostAtOnce);
}

bool RunCompilers(const Job& job, const std::vector<std::vector<std::string>>& commands,
                  const std::vector<std::string>& targets, const std::string& work) {
    std::vector<ProcessRequest> tools;
    for (std::size_t at = 0; at < commands.size(); ++at) {
        ProcessRequest request;
        request.arguments = commands[at];
        request.workingFolder = job.sourceFolder;
        request.outputFile = targets[at] + ".output";
        request.errorFile = ErrorsBeside(targets[at]);
        if (job.options.verbose) std::fprintf(stderr, "%s\n", ReadableCommandLine(commands[at]).c_str());
        tools.push_back(request);
    }
    Progress progress(work);
    std::function<void(std::size_t)> ticks;
    if (const std::function<void()> show = progress.Ticks()) {
        ticks = [&](std::size_t done) {
            progress.Tell(work + " (" + std::to_string(done + 1) + " of " + std::to_string(tools.size()) +
                          ")");
            show();
        };
    }
    std::size_t failed = 0;
    ProcessEnd end;
    const bool good = RunTools(tools, AtOnce(job.options), ticks, failed, end);
    progress.End();
    if (job.options.verbose) ShowErrors(targets);
    return good;
}

void ShowFailureUnlessDisturbed(Job& job, const std::string& output) {
    if (!IsDisturbed(job.build) && !GiveUpPlace(job.build)) ShowFailure(job, output);
}

// On Windows a program that runs cannot be written over, but it can be called otherwise.
static bool MoveAside(const std::string& file) {
    std::error_code failed;
    if (!fs::is_regular_file(PathOf(file), failed)) return false;
    fs::rename(PathOf(file), PathOf(file + ".old"), failed);
    return !failed;
}

bool Finish(const Job& job, const std::string& newFile, const std::string& file) {
    std::error_code failed;
    fs::rename(PathOf(newFile), PathOf(file), failed);
    if (failed && MoveAside(file)) fs::rename(PathOf(newFile), PathOf(file), failed);
    if (failed && !IsDisturbed(job.build)) ShowProblem("cannot write " + file + ": " + failed.message());
    return !failed;
}
