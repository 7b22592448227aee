#include "driver/command_line.h"

#include "base/paths.h"
#include "base/report.h"
#include "base/settings.h"

namespace {

constexpr char versionText[] = "1.2e (C++ Edition)";
constexpr std::size_t fewestArguments = 4;

constexpr char usageText[] =
    R"(Usage: kvt -s /path/to/mainSource.kvl -o /path/to/outputdir [-t] [-c] [-v] [-d] [-safe] [-quick]

-s     : Main source file path (.kvl file)
-o     : Output directory for C++ files
-t     : Trace - output original Korvel code as comments
-c     : Output user comments from source
-v     : Verbose mode - show debug/diagnostic output
-d     : Debug mode - enable debugger hooks and runtime checks
-safe  : Safe mode - enable runtime error checking only
-quick : Quick build - incremental compilation (skip unchanged files))";

struct ValueArgument {
    const char* name;
    std::string Settings::*field;
    const char* note;
};

constexpr ValueArgument valueArguments[] = {
    {"-s", &Settings::mainSource, "Main source: "},
    {"-o", &Settings::outputPath, "Output path: "},
};

struct Flag {
    const char* name;
    bool Settings::*field;
    const char* note;
};

constexpr Flag flags[] = {
    {"-t", &Settings::traceMode, "Do Trace"},
    {"-c", &Settings::outputComments, "Output comments"},
    {"-v", &Settings::verbose, "Verbose mode"},
    {"-d", &Settings::debugMode, "Debug mode (debugger + runtime checks)"},
    {"--debug", &Settings::debugMode, "Debug mode (debugger + runtime checks)"},
    {"-safe", &Settings::safeMode, "Safe mode (runtime error checking)"},
    {"-quick", &Settings::quickBuild, "Quick build mode (incremental compilation)"},
    {"-fast", &Settings::fastMode, "Fast mode (faster programs)"},
    {"-units", &Settings::units, "Translation units"},
    {"-check", &Settings::checkOnly, "Check only (nothing is written)"},
    {"-warn", &Settings::warnings, "Warnings"},
};

// Arguments that match no row are ignored.
void TakeArgument(const std::string& argument, const std::string& following) {
    for (const ValueArgument& row : valueArguments) {
        if (argument != row.name) continue;
        settings.*row.field = following;
        Say(row.note + following);
    }
    for (const Flag& row : flags) {
        if (argument != row.name) continue;
        settings.*row.field = true;
        Say(std::string("Flag Set: ") + row.note);
    }
}

}  // namespace

void PrintBanner() {
    Say(std::string("Korvel Compiler v") + versionText);
    Say("Converts Korvel to C++\n");
}

bool ParseCommandLine(const std::vector<std::string>& arguments) {
    if (arguments.size() < fewestArguments) {
        Say(usageText);
        return false;
    }
    // A value is looked at once more as an argument in its own right; one missing at the end is empty.
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        TakeArgument(arguments[i], i + 1 < arguments.size() ? arguments[i + 1] : std::string());
    }
    settings.sourceFolder = SourceFolderOf(settings.mainSource);
    if (settings.debugMode) {
        settings.safeMode = true;
        if (settings.verbose) Say("Debug mode: Runtime safety checks automatically enabled");
    }
    Say("");
    return true;
}
