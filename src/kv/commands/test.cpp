// kv test: runs the tests of a program, which are programs themselves.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/source_reader.h"
#include "kv/commands/commands.h"
#include "kv/diagnostics.h"
#include "kv/job.h"
#include "kv/make.h"
#include "kv/platform.h"
#include "kv/source_list.h"

namespace {

const char testEnding[] = "_test.kvl";
const char usualTimeout[] = "60";
const std::size_t linesShown = 50;

// The seconds that a program may run; 0 when the text means none.
int SecondsOf(const std::string& text) {
    char* end = nullptr;
    const long seconds = std::strtol(text.c_str(), &end, 10);
    return *end == '\0' && seconds > 0 && seconds < 1000000 ? static_cast<int>(seconds) : 0;
}

// The last lines of what a program has written to a file.
void ShowEnd(const std::string& file) {
    const std::string text = ReadWhole(file);
    std::size_t from = text.size(), lines = 0;
    while (from > 0 && (text[from - 1] != '\n' || from == text.size() || ++lines < linesShown)) --from;
    if (from > 0) std::printf("...\n");
    std::fwrite(text.data() + from, 1, text.size() - from, stdout);
    if (!text.empty() && text.back() != '\n') std::printf("\n");
}

// Runs a program that has been made, without input. Returns what is wrong with it; empty when it has passed.
std::string Run(const Job& job, int seconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    bool isLate = false;
    ProcessRequest request;
    request.arguments = {job.build.program};
    request.workingFolder = job.sourceFolder;
    request.outputFile = job.build.folder + "/test-output.txt";
    request.errorFile = job.build.folder + "/test-errors.txt";
    request.shallEnd = [&] { return isLate = isLate || std::chrono::steady_clock::now() > end; };
    std::string problem;
    const int status = RunProcess(request, problem);
    if (!problem.empty()) return "cannot run " + job.build.program + ": " + problem;
    if (isLate) return "it did not end within " + std::to_string(seconds) + " s";
    return status == 0 ? "" : "status " + std::to_string(status);
}

bool Test(const Options& options, const std::string& source, int seconds) {
    Job job;
    Options one = options;
    one.source = source;
    const bool isMade = PrepareJob(one, job) && Make(job);
    const std::string shown = job.source.empty() ? source : ShortPath(job.source, job.typedFolder);
    TellFolder(job);
    const std::string trouble = isMade ? Run(job, seconds) : "it could not be made";
    if (trouble.empty()) {
        std::printf("passed %s\n", shown.c_str());
    } else {
        std::printf("FAILED %s: %s\n", shown.c_str(), trouble.c_str());
    }
    if (isMade && !trouble.empty()) {
        ShowEnd(job.build.folder + "/test-output.txt");
        ShowEnd(job.build.folder + "/test-errors.txt");
    }
    std::fflush(stdout);
    return trouble.empty();
}

}  // namespace

int TestCommand(const Options& options) {
    const std::string timeout = options.timeout.empty() ? usualTimeout : options.timeout;
    const int seconds = SecondsOf(timeout);
    if (seconds == 0) {
        ShowProblem("--timeout takes a number of seconds, not \"" + timeout + "\"");
        return wrongUsage;
    }
    std::vector<std::string> names = options.names, sources;
    if (names.empty()) names.emplace_back(".");
    for (const std::string& name : names) {
        const std::vector<std::string> found = SourcesOf(name, testEnding);
        const bool isName = found.size() == 1 && found[0] == name;
        if (isName && !IsFile(name) && !IsFile(name + ".kvl"))
            return Fail("there is no folder or program " + name);
        if (found.empty()) {
            return Fail("there is no program *" + std::string(testEnding) + " in " + name);
        }
        sources.insert(sources.end(), found.begin(), found.end());
    }
    std::size_t failed = 0;
    for (const std::string& source : sources) failed += Test(options, source, seconds) ? 0 : 1;
    std::printf("%zu test program%s: %zu passed, %zu failed\n", sources.size(),
                sources.size() == 1 ? "" : "s", sources.size() - failed, failed);
    return failed == 0 ? 0 : failure;
}
