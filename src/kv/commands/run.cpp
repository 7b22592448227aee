// kv run, kv build and kv check.
#include <cstdio>

#include "kv/commands/commands.h"
#include "kv/diagnostics.h"
#include "kv/install.h"
#include "kv/job.h"
#include "kv/make.h"
#include "kv/platform.h"
#include "kv/translate.h"

namespace {

const int failure = 1;
const int attempts = 3;  // to run a program

int RunProgram(Job& job) {
    ProcessRequest request;
    request.arguments = ProgramCommand(job);
    std::string problem;
    TellFolder(job);
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

bool Check(const Options& options) {
    const auto translate = [](Job& given) { return BeginBuild(given.build) && Translate(given); };
    Job job;
    if (!PrepareJob(options, job) || !WorkInFolder(job, translate)) return false;
    const bool isLinked = !job.linkerFlags.empty();
    const char* unchecked = job.translation.hasCpp ? " (but kv build has to look at its C++)"
                            : isLinked             ? " (but kv build has to look for its libraries)"
                                                   : "";
    std::printf("%s: no mistakes found%s\n", ShortPath(job.source, job.typedFolder).c_str(), unchecked);
    return true;
}

}  // namespace

int RunCommand(const Options& options) {
    Job job;
    return PrepareJob(options, job) && Make(job) ? RunProgram(job) : failure;
}

int BuildCommand(const Options& options) {
    Job job;
    return PrepareJob(options, job) && Make(job) && Install(job) ? 0 : failure;
}

int CheckCommand(const Options& options) {
    int status = 0;
    for (const std::string& name : options.names) {
        Options one = options;
        one.source = name;
        if (!Check(one)) status = failure;
    }
    return status;
}
