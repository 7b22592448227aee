#include "kv/command_line.h"

#include <cstddef>

namespace {

struct CommandRow {
    const char* word;
    Command command;
};

const CommandRow commandRows[] = {
    {"run", Command::run},         {"build", Command::build},       {"check", Command::check},
    {"help", Command::help},       {"--help", Command::help},       {"-h", Command::help},
    {"version", Command::version}, {"--version", Command::version},
};

// Options without a value set one flag; options with a value fill one text.
struct FlagRow {
    const char* word;
    bool Options::*flag;
};

struct ValueRow {
    const char* word;
    std::string Options::*value;
    const char* meaning;
};

const FlagRow flagRows[] = {
    {"--safe", &Options::safe},
    {"--debug", &Options::debug},
    {"--plain", &Options::plain},
    {"--verbose", &Options::verbose},
};

const ValueRow valueRows[] = {
    {"-o", &Options::outputFile, "the name of the program to build"},
    {"--keep-cpp", &Options::keepCppFolder, "a folder"},
};

const char* const optimisations[] = {"-O0", "-O1", "-O2", "-O3"};

bool FindCommand(const std::string& word, Command& command) {
    for (const CommandRow& row : commandRows) {
        if (word == row.word) {
            command = row.command;
            return true;
        }
    }
    return false;
}

bool IsSwitch(const std::string& word, Options& options) {
    for (const FlagRow& row : flagRows) {
        if (word == row.word) {
            options.*row.flag = true;
            return true;
        }
    }
    for (const char* level : optimisations) {
        if (word == level) {
            options.optimisation = word;
            return true;
        }
    }
    return false;
}

const ValueRow* FindValueRow(const std::string& word) {
    for (const ValueRow& row : valueRows) {
        if (word == row.word) return &row;
    }
    return nullptr;
}

bool EndsInKvl(const std::string& word) {
    return word.size() > 4 && word.compare(word.size() - 4, 4, ".kvl") == 0;
}

// The rules that concern several options at once.
bool Consistent(const Options& options, const std::string& commandWord, std::string& problem) {
    if (options.source.empty()) {
        problem = "which program? Name its main file: kv " + commandWord + " game.kvl";
    } else if (!options.outputFile.empty() && options.command != Command::build) {
        problem = "-o belongs to kv build";
    } else if (!options.keepCppFolder.empty() && options.command == Command::check) {
        problem = "kv check makes nothing; --keep-cpp belongs to kv run and kv build";
    } else if (!options.arguments.empty() && options.command != Command::run) {
        problem = "arguments after \"--\" belong to kv run";
    }
    return problem.empty();
}

}  // namespace

bool IsFast(const Options& options) {
    return !options.plain && !options.debug && options.command != Command::check;
}

bool ParseCommandLine(const std::vector<std::string>& arguments, Options& options, std::string& problem) {
    problem.clear();
    if (arguments.empty()) return true;
    if (!FindCommand(arguments[0], options.command)) {
        problem = EndsInKvl(arguments[0])
                      ? "what shall be done with " + arguments[0] + "? Try: kv run " + arguments[0]
                      : "unknown command \"" + arguments[0] + "\"";
        return false;
    }
    if (options.command == Command::help || options.command == Command::version) return true;

    for (std::size_t at = 1; at < arguments.size(); ++at) {
        const std::string& word = arguments[at];
        if (word == "--") {
            options.arguments.assign(arguments.begin() + static_cast<std::ptrdiff_t>(at) + 1,
                                     arguments.end());
            break;
        }
        if (word == "--help" || word == "-h") {
            options.command = Command::help;
            return true;
        }
        if (IsSwitch(word, options)) continue;
        if (const ValueRow* row = FindValueRow(word)) {
            if (at + 1 == arguments.size() || arguments[at + 1].empty() || arguments[at + 1] == "--") {
                problem = word + " needs " + row->meaning + " behind it";
                return false;
            }
            options.*(row->value) = arguments[++at];
        } else if (word.size() > 1 && word[0] == '-') {
            problem = "unknown option \"" + word + "\"";
            return false;
        } else if (!options.source.empty()) {
            problem = "one program at a time: " + options.source + " or " + word +
                      "? (Arguments for the program stand behind \"--\".)";
            return false;
        } else {
            options.source = word;
        }
    }
    return Consistent(options, arguments[0], problem);
}

std::string HelpText() {
    return "kv - translate, compile and run Korvel programs\n"
           "\n"
           "  kv run game.kvl [-- arguments]   run a program\n"
           "  kv build game.kvl [-o program]   make an executable program\n"
           "  kv check game.kvl                look for mistakes, make nothing\n"
           "\n"
           "Options:\n"
           "  --safe           check divisions and array bounds while the program runs\n"
           "  --debug          hooks for a debugger (KVDEBUG=trace shows every step); takes the place of "
           "--safe\n"
           "  -O0 .. -O3       compile fast (-O0, usual for run) or for speed (-O2, usual for build)\n"
           "  --plain          the C++ in its plain form, easier to read; its programs run more slowly\n"
           "  --keep-cpp DIR   write the generated C++ to DIR\n"
           "  --verbose        show the commands that are run and what they say\n"
           "  --help           this text\n"
           "  --version        the version\n";
}
