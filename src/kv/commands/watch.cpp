// kv watch: runs a program, and again whenever one of its sources is saved.
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "kv/commands/commands.h"
#include "kv/diagnostics.h"
#include "kv/inputs.h"
#include "kv/job.h"
#include "kv/make.h"
#include "kv/platform.h"

namespace {

const std::chrono::milliseconds pause(100);

// The files that a program is made from, as they were last. They are looked at ten times a second, which costs nothing
// to speak of, and works on all file systems and with all editors, those that replace a file included.
class Watched {
public:
    explicit Watched(const Job& job) : files_(FilesTranslated(job)) {
        files_.insert(files_.end(), job.translation.missing.begin(), job.translation.missing.end());
        files_.push_back(job.source);
        before_ = Now();
    }

    bool HasChanged() const { return Now() != before_; }

    // Waits until a save is complete: an editor may write a file in steps, or take it away before it writes it anew.
    void Settle() const {
        std::vector<std::string> last;
        FileState main;
        const std::string& source = files_.back();
        for (std::vector<std::string> now = Now(); now != last || !StateOf(source, main); now = Now()) {
            last = now;
            std::this_thread::sleep_for(pause);
        }
    }

private:
    std::vector<std::string> files_;
    std::vector<std::string> before_;

    std::vector<std::string> Now() const {
        std::vector<std::string> states;
        for (const std::string& file : files_) {
            FileState state;
            states.push_back(StateOf(file, state) ? state.text : "");
        }
        return states;
    }
};

// Runs the program until it ends or a source changes; returns its status.
int RunUntil(const Job& job, const Watched& watched) {
    ProcessRequest request;
    request.arguments = ProgramCommand(job);
    request.shallEnd = [&watched] { return watched.HasChanged(); };
    std::string problem;
    const int status = RunProcess(request, problem);
    if (!problem.empty()) ShowProblem("cannot run " + job.build.program + ": " + problem);
    return status;
}

}  // namespace

int WatchCommand(const Options& options) {
    while (true) {
        Job job;
        if (!PrepareJob(options, job)) return failure;
        Watched before(job);
        const bool isMade = Make(job);
        // What was saved while the program was made counts as a change as well, for the main source.
        const Watched made(job);
        const Watched& watched = before.HasChanged() ? before : made;
        const int status = isMade ? RunUntil(job, watched) : failure;
        if (isMade && status == interruptedStatus) return status;
        if (!watched.HasChanged()) {
            const std::string end =
                isMade ? "the program has ended with status " + std::to_string(status) + "; " : "";
            ShowNote(end + "waiting for a change of its sources (Ctrl-C ends this)");
        }
        while (!watched.HasChanged()) std::this_thread::sleep_for(pause);
        watched.Settle();
        ShowNote(options.source + " has changed");
    }
}
