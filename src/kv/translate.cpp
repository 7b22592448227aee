#include "kv/translate.h"

#include <cstdio>
#include <filesystem>
#include <sstream>

#include "driver/paths.h"
#include "driver/utf8.h"
#include "kv/clash_place.h"
#include "kv/command_quoting.h"
#include "kv/diagnostics.h"
#include "kv/kvt_report.h"
#include "kv/platform.h"
#include "kv/progress.h"
#include "kv/write_file.h"

namespace fs = std::filesystem;

namespace {

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// kvt lists the program that a user might build beside the source, and the file of flags there, among the files of a
// build, and would delete them before its next translation. What lies beside the source is none of kvt's business here:
// it is taken off the list.
void ForgetFilesOfUser(const Job& job) {
    const fs::path manifest =
        PathOf(job.build.cppFolder) / PathOf("." + StripFolder(job.source) + ".manifest");
    std::istringstream lines(ReadWhole(TextOf(manifest)));
    const std::string program = StripExtension(job.source);
    std::string kept;
    bool changed = false;
    for (std::string line; std::getline(lines, line);) {
        const bool generated = EndsWith(line, ".cpp") || EndsWith(line, ".h");
        if (generated && line != program) {
            kept += line + "\n";
        } else {
            changed = true;
        }
    }
    if (changed) WriteOver(manifest, kept);
}

// kvt leaves the flags beside the source, too, where others may change them.
std::string JoinedFlags(const KvtReport& report) {
    std::string text;
    for (const std::string& flag : report.linkerFlags) text += flag + " ";
    return text;
}

void ShowErrors(const Job& job, KvtReport& report, int status) {
    if (report.errors.empty()) {
        ShowProblem("kvt ended without a result (status " + std::to_string(status) +
                    "). This is a fault of kvt, not of " + ShortPath(job.source, job.typedFolder) +
                    ".\nWhat it said: " + job.build.kvtOutput + "\n" + job.build.kvtErrors);
    }
    for (Diagnostic& diagnostic : report.errors) {
        if (diagnostic.file.empty()) FindClash(job.source, diagnostic);
        diagnostic.file =
            ShortPath(TextOf(PathOf(job.installation) / PathOf(diagnostic.file)), job.typedFolder);
        Show(diagnostic);
    }
}

void ShowWarnings(Job& job, const KvtReport& report) {
    job.hadWarnings = !report.warnings.empty();
    for (Diagnostic warning : report.warnings) {
        if (warning.file.empty()) warning.file = job.source;
        warning.file = ShortPath(TextOf(PathOf(job.installation) / PathOf(warning.file)), job.typedFolder);
        Show(warning);
    }
}

}  // namespace

std::string DependencyRecord(const Job& job) {
    return TextOf(PathOf(job.build.cppFolder) / PathOf("." + ProgramName(job.source) + ".kvl.deps"));
}

std::vector<std::string> TranslateCommand(const Job& job) {
    const char* const manner = job.options.command == Command::check ? "-check" : "-quick";
    std::vector<std::string> command = {job.kvt, "-s",   job.source, "-o", job.build.cppFolder,
                                        manner,  "-warn"};
    if (job.options.debug) command.push_back("-d");
    if (job.options.safe) command.push_back("-safe");
    if (IsFast(job.options)) command.push_back("-fast");
    return command;
}

bool Translate(Job& job) {
    std::error_code failed;
    // Without its record kvt always translates; what need not be translated kv knows better itself.
    fs::remove(PathOf(DependencyRecord(job)), failed);
    ForgetFilesOfUser(job);
    const bool hadLinkerFile = fs::exists(PathOf(StripExtension(job.source) + ".linkflags"), failed);

    ProcessRequest request;
    request.arguments = TranslateCommand(job);
    request.outputFile = job.build.kvtOutput;
    request.errorFile = job.build.kvtErrors;
    if (job.options.verbose) std::fprintf(stderr, "%s\n", ReadableCommandLine(request.arguments).c_str());
    std::string problem;
    Progress progress("Translating " + TextOf(PathOf(job.source).filename()));
    request.whileWaiting = progress.Ticks();
    const int status = RunProcess(request, problem);
    progress.End();
    if (IsDisturbed(job.build)) return false;
    if (!problem.empty()) {
        ShowProblem("cannot run " + job.kvt + ": " + problem);
        return false;
    }
    const std::string output = ReadWhole(request.outputFile);
    const std::string errors = ReadWhole(request.errorFile);
    if (job.options.verbose) std::fprintf(stderr, "%s%s", output.c_str(), errors.c_str());
    KvtReport report = ParseKvtReport(output, errors);
    job.linkerFlags = SplitFlags(JoinedFlags(report));
    // Nothing is left beside the source.
    if (!hadLinkerFile && !report.linkerFile.empty())
        fs::remove(PathOf(job.installation) / PathOf(report.linkerFile), failed);
    if (status != 0) {
        if (!GiveUpPlace(job.build)) ShowErrors(job, report, status);
        return false;
    }
    ForgetFilesOfUser(job);
    if (job.options.command != Command::check && !fs::exists(PathOf(job.mainCpp), failed)) {
        ShowProblem(
            ShortPath(job.source, job.typedFolder) +
            " makes no program: files in a folder whose name ends in .kvh only lend their declarations");
        return false;
    }
    ShowWarnings(job, report);
    return true;
}
