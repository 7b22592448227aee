// kv run, kv build and kv check.
#include <cstdio>
#include <string>

#include "kv/commands/commands.h"
#include "kv/compile.h"
#include "kv/diagnostics.h"
#include "kv/install.h"
#include "kv/job.h"
#include "kv/make.h"
#include "kv/platform.h"
#include "kv/translate.h"

namespace {

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
    return Fail("cannot run " + job.build.program + ": " + problem);
}

// A file that only lends its declarations has no C++ of its own.
bool CheckInFolder(Job& job) {
    if (!BeginBuild(job.build) || !Translate(job)) return false;
    return !job.options.checkCpp || job.translation.mainFile.empty() || CheckCpp(job);
}

// What may still be wrong with a program in which no mistake was found; empty when that is nothing.
std::string LeftUnchecked(const Job& job) {
    const bool skipsCpp = job.translation.hasCpp && !job.options.checkCpp;
    const struct {
        bool applies;
        const char* what;
    } rows[] = {{skipsCpp, "inline C++"},
                {job.translation.hasCpp || !job.linkerFlags.empty(), "linking"},
                {!job.translation.libraries.empty(), "shared libraries"}};
    std::string text;
    for (const auto& row : rows) {
        if (row.applies) text += (text.empty() ? "; not checked: " : ", ") + std::string(row.what);
    }
    return skipsCpp ? text + " (kv check --cpp checks the C++)" : text;
}

bool Check(const Options& options) {
    Job job;
    if (!PrepareJob(options, job) || !WorkInFolder(job, CheckInFolder)) return false;
    const std::string name = ShortPath(job.source, job.typedFolder);
    std::printf("%s: no mistakes found%s\n", name.c_str(), LeftUnchecked(job).c_str());
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
