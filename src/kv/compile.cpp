#include "kv/compile.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "kv/command_quoting.h"
#include "kv/compiler_report.h"
#include "kv/diagnostics.h"
#include "kv/platform.h"
#include "kv/precompiled.h"
#include "kv/stamp.h"
#include "kv/toolchain.h"
#include "kv/translate.h"

namespace fs = std::filesystem;

namespace {

// A mistake in the Korvel source never gets here: kvt refuses it. What remains is C++ written by the user, a
// library that is missing, or a fault of the translation.
void ShowFailure(const Job& job, const std::string& output) {
    const std::vector<Diagnostic> mistakes = ExplainCompilerOutput(output, SourcesOf(DependencyRecord(job)),
                                                                   job.build.cppFolder, job.sourceFolder);
    for (Diagnostic diagnostic : mistakes) {
        if (!diagnostic.file.empty()) diagnostic.file = ShortPath(diagnostic.file, job.typedFolder);
        Show(diagnostic);
    }
    Diagnostic summary;
    summary.file = ShortPath(job.source, job.typedFolder);
    summary.severity = mistakes.empty() ? Severity::error : Severity::note;
    summary.message = mistakes.empty()
                          ? "the program was translated, but the C++ compiler refused the result. This is "
                            "a fault of the\nKorvel compiler (or of C++ in an InlineCpp block), not of "
                            "your Korvel code.\n"
                          : "";
    summary.message += "all that the C++ compiler said: " + job.build.compilerErrors;
    if (!job.options.verbose) summary.message += " (--verbose shows it)";
    Show(summary);
}

bool CopyLibraries(const Job& job, const fs::path& folder) {
    for (const std::string& library : SharedLibraries(job)) {
        std::error_code failed;
        fs::copy_file(fs::path(job.build.cppFolder) / library, folder / library,
                      fs::copy_options::overwrite_existing, failed);
        if (failed) {
            ShowProblem("cannot copy " + library + " to " + folder.string() + ": " + failed.message());
            return false;
        }
    }
    return true;
}

}  // namespace

std::vector<std::string> SharedLibraries(const Job& job) {
    const std::string mark = "// DLL: ";
    std::vector<std::string> libraries;
    std::ifstream stream(job.mainCpp, std::ios::binary);
    for (std::string line; std::getline(stream, line);) {
        if (line == "// ===== End Userlib Code =====") break;
        if (line.compare(0, mark.size(), mark) != 0) continue;
        const std::string name = line.substr(mark.size());
        std::error_code failed;
        const bool plainName = !name.empty() && name.find_first_of("/\\") == std::string::npos;
        if (plainName && fs::is_regular_file(fs::path(job.build.cppFolder) / name, failed))
            libraries.push_back(name);
    }
    return libraries;
}

std::vector<std::string> JobCompileCommand(const Job& job, const std::string& program) {
    CompileJob compile;
    compile.mainCpp = job.mainCpp;
    compile.program = program;
    compile.dependencies = job.build.dependencies;
    compile.includeFolder = (fs::path(job.installation) / "include").string();
    compile.sourceFolder = job.sourceFolder;
    compile.prelude = job.prelude;
    compile.optimisation = job.options.optimisation;
    compile.debug = job.options.debug;
    compile.linkerFlags = job.linkerFlags;
    return CompileCommand(job.compiler, compile);
}

void ChoosePrelude(Job& job) {
    // A compilation for speed spends its time elsewhere.
    if (job.options.optimisation != "-O0") return;
    PreludeJob prelude;
    prelude.compiler = job.compiler;
    prelude.includeFolder = (fs::path(job.installation) / "include").string();
    prelude.optimisation = job.options.optimisation;
    prelude.debug = job.options.debug;
    prelude.verbose = job.options.verbose;
    job.prelude = PreludePath(prelude);
    if (!job.prelude.empty() && !PreparePrelude(prelude, job.prelude)) job.prelude.clear();
}

bool Compile(const Job& job) {
    const std::string unfinished = job.build.program + ".new" + executableSuffix;
    ProcessRequest request;
    request.arguments = JobCompileCommand(job, unfinished);
    request.workingFolder = job.sourceFolder;  // -L and the like in Linker lines count from there
    request.outputFile = job.build.compilerOutput;
    request.errorFile = job.build.compilerErrors;
    if (job.options.verbose) std::fprintf(stderr, "%s\n", ReadableCommandLine(request.arguments).c_str());
    std::string problem;
    const int status = RunProcess(request, problem);
    if (status < 0) {
        ShowProblem("cannot run the C++ compiler " + request.arguments[0] + ": " + problem);
        return false;
    }
    const std::string errors = ReadWhole(request.errorFile);
    if (job.options.verbose) std::fprintf(stderr, "%s", errors.c_str());
    std::error_code failed;
    if (status != 0) {
        fs::remove(unfinished, failed);
        ShowFailure(job, errors);
        return false;
    }
    fs::rename(unfinished, job.build.program, failed);
    if (failed) {
        ShowProblem("cannot write " + job.build.program + ": " + failed.message());
        return false;
    }
    return CopyLibraries(job, fs::path(job.build.program).parent_path());
}
