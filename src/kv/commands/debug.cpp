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
    Job job;
    if (!PrepareJob(options, job) || !Make(job)) return false;
    if (job.debuggerCode.empty()) {
        return Refuse("the debugger's side in the program cannot be made: there is no room for it in " +
                      UserCacheFolder());
    }
    TellFolder(job);
    launch = {ProgramCommand(job), job.source, job.typedFolder, job.installation, job.kv};
    return true;
}

}  // namespace

int DebugCommand(const Options& options) {
    debug::Launch launch;
    const auto remake = [&options](debug::Launch& made) { return MakeForDebugger(options, made); };
    return remake(launch) ? debug::DebugInTerminal(launch, remake) : 1;
}

bool IsDebuggeeCommand(const std::vector<std::string>& words) { return debug::IsDebuggeeCommand(words); }
int RunDebuggee(const std::vector<std::string>& words) { return debug::RunDebuggee(words); }

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
    return Fail("this kv was built without JSON, which the debugger speaks (Debian: nlohmann-json3-dev)");
}

}  // namespace

int DebugCommand(const Options&) { return NeedsJson(); }
int DapCommand(const Options&) { return NeedsJson(); }
bool IsDebuggeeCommand(const std::vector<std::string>&) { return false; }
int RunDebuggee(const std::vector<std::string>&) { return 1; }

#endif
