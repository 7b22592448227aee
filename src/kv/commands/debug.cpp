// kv debug and kv dap: programs are run step by step.
#include "kv/commands/commands.h"
#include "kv/diagnostics.h"

#if __has_include(<nlohmann/json.hpp>)
#include "debug/launch.h"
#include "kv/job.h"
#include "kv/make.h"
#include "kv/platform.h"

namespace {

bool MakeForDebugger(const Options& options, debug::Launch& launch) {
    if (*debug::noDebugger != '\0') {
        ShowProblem(debug::noDebugger);
        return false;
    }
    Job job;
    if (!PrepareJob(options, job) || !Make(job)) return false;
    if (job.debuggerCode.empty()) {
        ShowProblem("the debugger's side in the program cannot be made: there is no room for it in " +
                    UserCacheFolder());
        return false;
    }
    TellFolder(job);
    launch = {ProgramCommand(job), job.source, job.typedFolder, job.installation};
    return true;
}

}  // namespace

int DebugCommand(const Options& options) {
    debug::Launch launch;
    return MakeForDebugger(options, launch) ? debug::DebugInTerminal(launch) : 1;
}

int DapCommand(const Options& options) {
    UseBinaryStreams();
    return debug::ServeEditor([&options](const std::string& source, const std::vector<std::string>& arguments,
                                         debug::Launch& launch) {
        Options made = options;
        made.source = source;
        made.arguments = arguments;
        return MakeForDebugger(made, launch);
    });
}

#else

namespace {

int NeedsJson() {
    ShowProblem("this kv was built without JSON, which the debugger speaks (Debian: nlohmann-json3-dev)");
    return 1;
}

}  // namespace

int DebugCommand(const Options&) { return NeedsJson(); }
int DapCommand(const Options&) { return NeedsJson(); }

#endif
