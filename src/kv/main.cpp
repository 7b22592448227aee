// kv: translates, compiles and runs Korvel programs in one step.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "base/utf8.h"
#include "kv/command_line.h"
#include "kv/diagnostics.h"
#include "kv/install.h"
#include "kv/job.h"
#include "kv/make.h"
#include "kv/platform.h"
#include "kv/translate.h"
#include "kv/translator.h"

namespace {

const char versionText[] = "kv 1.2e";
const int failure = 1;
const int wrongUsage = 2;
const int attempts = 3;  // to run a program

int RunProgram(Job& job) {
    ProcessRequest request;
    request.arguments = {job.build.program};
    request.arguments.insert(request.arguments.end(), job.options.arguments.begin(),
                             job.options.arguments.end());
    std::string problem;
    int status = RunProcess(request, problem);
    for (int again = 0; again < attempts && !problem.empty() && !IsExecutable(job.build.program); ++again) {
        // Somebody has removed it meanwhile, or it lies where nothing can be executed.
        if (FileState state; StateOf(job.build.program, state)) ++job.build.place;
        if (!PrepareFolder(job) || !Make(job)) return failure;
        request.arguments[0] = job.build.program;
        status = RunProcess(request, problem);
    }
    if (problem.empty()) return status;
    ShowProblem("cannot run " + job.build.program + ": " + problem);
    return failure;
}

int Check(Job& job) {
    const auto translate = [](Job& given) { return BeginBuild(given.build) && Translate(given); };
    if (!WorkInFolder(job, translate)) return failure;
    std::printf("%s: no mistakes found\n", ShortPath(job.source, job.typedFolder).c_str());
    return 0;
}

int Perform(const Options& options) {
    Job job;
    if (!PrepareJob(options, job)) return failure;
    if (options.command == Command::check) return Check(job);
    if (!Make(job)) return failure;
    if (options.command == Command::build) return Install(job) ? 0 : failure;
    return RunProgram(job);
}

// An exception would take memory as well.
[[noreturn]] void EndWithoutMemory() {
    EraseErrorLine();
    std::fputs("kv: error: out of memory\n", stderr);
    std::_Exit(failure);
}

int Main(int argc, char** argv) {
    const Utf8Console console;
    const std::vector<std::string> words = CommandLineWords(argc, argv);
    if (IsTranslatorCommand(words)) return TranslateAsCommanded(words);
    Options options;
    std::string problem;
    if (!ParseCommandLine(words, options, problem)) {
        ShowProblem(problem);
        std::fputs("kv --help tells how kv is used.\n", stderr);
        return wrongUsage;
    }
    switch (options.command) {
        case Command::help:
            std::fputs(HelpText().c_str(), stdout);
            return 0;
        case Command::version:
            std::printf("%s\n", versionText);
            return 0;
        default:
            return Perform(options);
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::set_new_handler(EndWithoutMemory);
    WriteBeyondLimits();
    try {
        return Main(argc, argv);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "kv: error: %s\n", problem.what());
        return failure;
    }
}
