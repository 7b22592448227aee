// What kv can be told to do, as tables: a row for each command and for each option. The command line, the help texts
// and the completion of shells come from here.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "kv/command_line.h"

struct CommandRow {
    Command command;
    const char* word;
    const char* usage;  // what stands behind the word: "PROGRAM"
    const char* noun;   // what a name is the name of
    std::size_t fewest, most;
    const char* question;  // to somebody who gives too few names
    const char* help;
    int (*perform)(const Options& options);  // returns the exit status
};

// Where an option goes: a switch turns something on, the others take the text behind them, some as often as they stand
// there.
using Setting = std::variant<bool Options::*, std::string Options::*, std::vector<std::string> Options::*>;

struct OptionRow {
    const char* names;  // "-o,--output"
    Setting setting;
    const char* value;    // what the text behind it is; for switches ""
    const char* choices;  // the words that it can be; "": anything
    unsigned commands;    // a bit for each command that takes it
    const char* help;
};

const std::vector<CommandRow>& CommandRows();
const std::vector<OptionRow>& OptionRows();

constexpr unsigned Bit(Command command) { return 1U << static_cast<unsigned>(command); }

// Exit statuses of kv itself.
inline constexpr int failure = 1, wrongUsage = 2;

// Shows why a command gives up; its exit status.
int Fail(const std::string& problem);

inline constexpr char versionText[] = "kv 1.2e";

// The commands themselves.
int RunCommand(const Options& options);
int BuildCommand(const Options& options);
int CheckCommand(const Options& options);
int TestCommand(const Options& options);
int DocCommand(const Options& options);
int ExplainCommand(const Options& options);
int FmtCommand(const Options& options);
int LspCommand(const Options& options);
int DebugCommand(const Options& options);
int DapCommand(const Options& options);
// kv as kv dap has it called in an editor's terminal; see debug/launch.h.
bool IsDebuggeeCommand(const std::vector<std::string>& words);
int RunDebuggee(const std::vector<std::string>& words);
int NewCommand(const Options& options);
int WatchCommand(const Options& options);
int PackageCommand(const Options& options);
int CleanCommand(const Options& options);
int CompletionCommand(const Options& options);
int HelpCommand(const Options& options);
int VersionCommand(const Options& options);
