// The command line of kv.
#pragma once

#include <string>
#include <vector>

enum class Command {
    run,
    test,
    build,
    check,
    doc,
    explain,
    create,
    format,
    lsp,
    debug,
    dap,
    watch,
    package,
    clean,
    completion,
    help,
    version
};

struct Options {
    Command command = Command::help;
    std::vector<std::string> names;      // what stands behind the command, as typed
    std::string source;                  // the program, as typed: the first of the names
    std::string outputFile;              // build: -o, as typed; empty for the usual place
    std::string keepCppFolder;           // --keep-cpp, as typed; empty for the hidden build folder
    std::string optimisation;            // "-O0", "-O2"; empty for the command's own choice
    bool safe = false;                   // --safe
    bool debug = false;                  // --debug
    bool plain = false;                  // --plain
    bool verbose = false;                // --verbose
    std::string target;                  // --target: "windows"; empty for this system
    bool isStatic = false;               // --static
    std::string jobs;                    // --jobs, as typed; empty for as many as there are cores
    std::string timeout;                 // test: --timeout, as typed; empty for the usual one
    std::vector<std::string> data;       // package: --data, as typed
    bool onlyCheck = false;              // fmt: --check
    bool checkCpp = false;               // check: --cpp
    std::string messageFormat;           // --message-format: human (also when empty), short or json
    bool noWarnings = false;             // --no-warnings
    bool warningsAsErrors = false;       // --warnings-as-errors
    std::vector<std::string> arguments;  // run: what follows "--"
};

// Whether the program is one for Windows, made on another system.
bool IsForWindows(const Options& options);

// Whether the program is made to stay, and for speed.
bool IsToStay(const Options& options);

// Whether there is work for the C++ compiler.
bool NeedsCompiler(const Options& options);

// Whether the program is made for the debugger, which looks at it while it runs.
bool IsForDebugger(const Options& options);

// Whether the program is translated for speed.
bool IsFast(const Options& options);

// Whether the C++ leads back to the source, and a failing program says where it failed.
bool TellsPlaces(const Options& options);

// Reads the arguments after the program's name. Returns false and sets `problem` (one sentence for the user)
// when they make no sense.
bool ParseCommandLine(const std::vector<std::string>& arguments, Options& options, std::string& problem);

// The text of kv --help, or of a command's own --help; without such a command the former.
std::string HelpText(const std::string& commandWord);
