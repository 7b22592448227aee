// kv: translates, compiles and runs Korvel programs in one step.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "base/utf8.h"
#include "kv/commands/commands.h"
#include "kv/diagnostics.h"
#include "kv/platform.h"
#include "kv/translator.h"

namespace {

// An exception would take memory as well.
[[noreturn]] void EndWithoutMemory() {
    EraseErrorLine();
    std::fputs("kv: error: out of memory\n", stderr);
    std::_Exit(failure);
}

// Before anything else takes memory: tables are made before main begins.
__attribute__((constructor(101))) void BeginMemory() { std::set_new_handler(EndWithoutMemory); }

int Main(int argc, char** argv) {
    const Utf8Console console;
    const std::vector<std::string> words = CommandLineWords(argc, argv);
    if (IsTranslatorCommand(words)) {
        const int status = TranslateAsCommanded(words);
        std::fflush(nullptr);
        std::_Exit(status);  // freeing the tables one by one would take up to a tenth of the run
    }
    if (IsDebuggeeCommand(words)) return RunDebuggee(words);
    Options options;
    std::string problem;
    if (!ParseCommandLine(words, options, problem)) {
        ShowProblem(problem);
        std::fputs("kv --help tells how kv is used.\n", stderr);
        return wrongUsage;
    }
    if (!UseMessageFormat(options.messageFormat)) {
        UseMessageFormat("human");
        ShowProblem("this kv was built without JSON (Debian: nlohmann-json3-dev)");
        return wrongUsage;
    }
    for (const CommandRow& row : CommandRows()) {
        if (row.command == options.command) return row.perform(options);
    }
    return wrongUsage;
}

}  // namespace

int main(int argc, char** argv) {
    WriteBeyondLimits();
    try {
        return Main(argc, argv);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "kv: error: %s\n", problem.what());
        return failure;
    }
}
