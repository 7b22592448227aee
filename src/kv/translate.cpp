#include "kv/translate.h"

#include <cstdio>
#include <filesystem>

#include "base/command_quoting.h"
#include "base/utf8.h"
#include "kv/diagnostics.h"
#include "kv/platform.h"
#include "kv/progress.h"
#include "kv/translation.h"
#include "kv/translator.h"

namespace fs = std::filesystem;

namespace {

const std::size_t mistakesShown = 20;

// Calls the translator. Returns its exit status, or -1 after telling the user that it cannot be called.
int RunTranslator(const Job& job) {
    ProcessRequest request;
    request.arguments = TranslatorCommand(job);
    request.outputFile = job.build.translatorOutput;
    request.errorFile = job.build.translatorErrors;
    if (job.options.verbose) std::fprintf(stderr, "%s\n", ReadableCommandLine(request.arguments).c_str());
    std::string problem;
    Progress progress("Translating " + TextOf(PathOf(job.source).filename()));
    request.whileWaiting = progress.Ticks();
    const int status = RunProcess(request, problem);
    progress.End();
    const std::string said = job.options.verbose ? ReadWhole(job.build.translatorOutput) : "";
    if (!said.empty()) std::fprintf(stderr, "kv: %s", said.c_str());
    if (problem.empty()) return status;
    ShowProblem("cannot run " + job.kv + ": " + problem);
    return -1;
}

void ShowCrash(const Job& job, int status) {
    ShowProblem("the translation ended without a result (status " + std::to_string(status) +
                "). This is a fault of the Korvel compiler, not of " +
                ShortPath(job.source, job.typedFolder) + ".\nWhat it said: " + job.build.translatorErrors);
}

void Shorten(korvel::Range& range, const std::string& folder) {
    if (!range.file.empty()) range.file = ShortPath(range.file, folder);
}

void ShowDiagnostics(const Job& job) {
    std::size_t shown = 0, more = 0;
    for (const korvel::Diagnostic& said : job.translation.diagnostics) {
        if ((said.severity == korvel::Severity::Error) == job.hadWarnings) continue;
        if (shown == mistakesShown && UsedMessageFormat() == MessageFormat::human) {
            ++more;
            continue;
        }
        ++shown;
        Diagnostic diagnostic = said;
        if (job.options.warningsAsErrors) diagnostic.severity = Severity::Error;
        Shorten(diagnostic, job.typedFolder);
        for (korvel::Related& related : diagnostic.related) Shorten(related, job.typedFolder);
        for (korvel::Fix& fix : diagnostic.fixes) Shorten(fix, job.typedFolder);
        Show(diagnostic);
    }
    if (more > 0) ShowNote("and " + std::to_string(more) + " more");
}

}  // namespace

bool LoadTranslation(Job& job) {
    job.translation = {};
    if (!UnpackTranslation(ReadWhole(job.build.translation), job.translation)) return false;
    std::string flags;
    for (const std::string& flag : job.translation.linkerFlags) flags += flag + " ";
    job.linkerFlags = SplitFlags(flags);
    const bool isSound = korvel::IsSound(job.translation);
    job.hadWarnings = isSound && !job.translation.diagnostics.empty();
    return true;
}

bool Translate(Job& job) {
    std::error_code ignored;
    fs::remove(PathOf(job.build.translation), ignored);
    const int status = RunTranslator(job);
    if (IsDisturbed(job.build) || status == -1) return false;
    const bool hasResult = status == 0 && LoadTranslation(job);
    if (!hasResult || !korvel::IsSound(job.translation)) {
        if (GiveUpPlace(job.build)) return false;
        if (hasResult)
            ShowDiagnostics(job);
        else
            ShowCrash(job, status);
        return false;
    }
    if (job.options.command != Command::check && job.translation.mainFile.empty()) {
        return Refuse(
            ShortPath(job.source, job.typedFolder) +
            " makes no program: files in a folder whose name ends in .kvh only lend their declarations");
    }
    return ShowWarnings(job);
}

bool ShowWarnings(const Job& job) {
    ShowDiagnostics(job);
    return !job.hadWarnings || !job.options.warningsAsErrors;
}
