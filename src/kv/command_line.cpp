#include "kv/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <sstream>

#include "base/edit_distance.h"
#include "base/text.h"
#include "kv/commands/commands.h"

namespace {

// The usual ways to ask for two of the commands.
const struct {
    const char* word;
    const char* command;
} shortWords[] = {{"--help", "help"}, {"-h", "help"}, {"--version", "version"}, {"-V", "version"}};

// What commands and options are called elsewhere.
const struct {
    const char *word, *here;
} elsewhere[] = {{"compile", "build"}, {"make", "build"},    {"exec", "run"},
                 {"start", "run"},     {"init", "new"},      {"create", "new"},
                 {"format", "fmt"},    {"lint", "check"},    {"man", "doc"},
                 {"--output", "-o"},   {"-v", "--verbose"},  {"-g", "--debug"},
                 {"--release", "-O2"}, {"--optimize", "-O"}, {"--windows", "--target windows"}};

// "; did you mean check?", of the words that there are; empty where none is like it.
std::string DidYouMean(const std::string& word, const std::vector<std::string>& known) {
    std::string nearest = NearestWord(word, known, word.size() < 5 ? 1 : 2);
    for (const auto& row : elsewhere)
        if (word == row.word) nearest = row.here;
    return nearest.empty() ? "" : "; did you mean " + nearest + "?";
}

std::string UnknownCommand(const std::string& word) {
    std::vector<std::string> known;
    for (const CommandRow& row : CommandRows()) known.emplace_back(row.word);
    return "unknown command \"" + word + "\"" + DidYouMean(word, known);
}

const CommandRow* FindCommand(std::string word) {
    for (const auto& row : shortWords) {
        if (word == row.word) word = row.command;
    }
    for (const CommandRow& row : CommandRows()) {
        if (word == row.word) return &row;
    }
    return nullptr;
}

// CLI11 knows nothing of what stands behind "--", and puts all options before the names.
class Layout : public CLI::Formatter {
public:
    Layout() { column_width(28); }

    std::string make_usage(const CLI::App* app, std::string) const override {
        const CommandRow* row = FindCommand(app->get_name());
        const std::string said = row == nullptr ? "COMMAND ..." : std::string(row->word) + " " + row->usage;
        return "Usage: kv " + said + "\n";
    }
};

std::vector<std::string> WordsOf(const char* text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
}

CLI::Option* Declare(CLI::App& app, const OptionRow& row, Options& options) {
    CLI::Option* option = nullptr;
    if (const auto* flag = std::get_if<bool Options::*>(&row.setting)) {
        option = app.add_flag(row.names, options.**flag, row.help);
    } else if (const auto* list = std::get_if<std::vector<std::string> Options::*>(&row.setting)) {
        // One at a time: what follows is a name again.
        return app.add_option(row.names, options.**list, row.help)
            ->type_name(row.value)
            ->allow_extra_args(false);
    } else {
        option = app.add_option(row.names, options.*std::get<std::string Options::*>(row.setting), row.help);
        option->type_name(row.value);
    }
    if (*row.choices != '\0') option->check(CLI::IsMember(WordsOf(row.choices)));
    return option->take_last();
}

// What is no option of the command is left over.
void Declare(CLI::App& app, const CommandRow& row, Options& options) {
    app.allow_windows_style_options(false);
    app.allow_extras();
    app.set_help_flag("-h,--help", "this text");
    app.formatter(std::make_shared<Layout>());
    for (const OptionRow& option : OptionRows()) {
        if ((option.commands & Bit(row.command)) != 0) Declare(app, option, options);
    }
}

bool IsOption(const std::string& word) { return word.size() > 1 && word[0] == '-'; }

// "kv run and kv build".
std::string CommandsOf(const OptionRow& option) {
    std::vector<std::string> commands;
    for (const CommandRow& row : CommandRows()) {
        if ((option.commands & Bit(row.command)) != 0) commands.push_back(std::string("kv ") + row.word);
    }
    std::string text;
    for (std::size_t at = 0; at < commands.size(); ++at) {
        text += (at == 0 ? "" : at + 1 == commands.size() ? " and " : ", ") + commands[at];
    }
    return text;
}

std::string UnknownOption(const std::string& word) {
    std::vector<std::string> known;
    for (const OptionRow& row : OptionRows()) {
        if (word.substr(0, word.find('=')) == row.names) return word + " belongs to " + CommandsOf(row);
        known.emplace_back(row.names);
    }
    return "unknown option \"" + word + "\"" + DidYouMean(word.substr(0, word.find('=')), known);
}

std::string NeedsValue(const OptionRow& row) {
    return std::string(row.names) + " needs a " + row.value + " behind it";
}

// "mac not in {windows}", as CLI11 puts it.
std::string WrongChoice(const OptionRow& row, const std::string& problem) {
    std::string choices;
    for (const std::string& choice : WordsOf(row.choices)) choices += (choices.empty() ? "" : ", ") + choice;
    return std::string(row.names) + " is one of " + choices + ", not " + problem.substr(0, problem.find(' '));
}

// An option whose value is empty.
std::string EmptyValue(const Options& options, const CLI::App& app) {
    for (const OptionRow& row : OptionRows()) {
        const auto* value = std::get_if<std::string Options::*>(&row.setting);
        const CLI::Option* option = value == nullptr ? nullptr : app.get_option_no_throw(row.names);
        if (option != nullptr && option->count() > 0 && (options.**value).empty()) return NeedsValue(row);
    }
    return "";
}

bool IsCount(const std::string& word) {
    return word.find_first_not_of("0123456789") == std::string::npos &&
           word.find_first_of("123456789") != std::string::npos;
}

bool TakesArguments(Command command) {
    return command == Command::run || command == Command::watch || command == Command::debug;
}

// What is left over when CLI11 has taken the options.
std::string TakeNames(const CommandRow& row, const std::vector<std::string>& words, Options& options) {
    for (const std::string& word : words) {
        const bool isAskedFor = row.command == Command::doc;  // kv doc --safe
        if (IsOption(word) && !isAskedFor) return UnknownOption(word);
        if (options.names.size() == row.most) {
            if (row.most == 0) return std::string("kv ") + row.word + " stands alone";
            return std::string("one ") + row.noun + " at a time: " + options.names[0] + " or " + word + "?" +
                   (TakesArguments(row.command) ? " (Arguments for the program stand behind \"--\".)" : "");
        }
        options.names.push_back(word);
    }
    if (options.names.size() < row.fewest) return row.question;
    return "";
}

std::string Read(const CommandRow& row, std::vector<std::string> words, Options& options) {
    CLI::App app;
    Declare(app, row, options);
    std::reverse(words.begin(), words.end());  // as CLI11 takes them
    try {
        app.parse(words);
    } catch (const CLI::CallForHelp&) {
        options.command = Command::help;
        options.names = {row.word};
        return "";
    } catch (const CLI::ParseError& problem) {
        const std::string text = problem.what();
        for (const OptionRow& option : OptionRows()) {
            if (text == std::string(option.names) + ": 1 required " + option.value + " missing")
                return NeedsValue(option);
            const std::string start = std::string(option.names) + ": ";
            if (*option.choices != '\0' && text.compare(0, start.size(), start) == 0)
                return WrongChoice(option, text.substr(start.size()));
        }
        return text;
    }
    const std::string problem = EmptyValue(options, app);
    return problem.empty() ? TakeNames(row, app.remaining(), options) : problem;
}

}  // namespace

bool IsForWindows(const Options& options) { return options.target == "windows"; }

bool IsToStay(const Options& options) {
    return options.command == Command::build || options.command == Command::package;
}

bool NeedsCompiler(const Options& options) { return options.command != Command::check || options.checkCpp; }

bool IsForDebugger(const Options& options) {
    return options.command == Command::debug || options.command == Command::dap;
}

bool IsFast(const Options& options) { return !options.plain && !options.debug && NeedsCompiler(options); }

bool TellsPlaces(const Options& options) { return !options.plain && NeedsCompiler(options); }

bool ParseCommandLine(const std::vector<std::string>& arguments, Options& options, std::string& problem) {
    problem.clear();
    if (arguments.empty()) return true;
    const CommandRow* const row = FindCommand(arguments[0]);
    if (row == nullptr) {
        problem = EndsWith(arguments[0], ".kvl")
                      ? "what shall be done with " + arguments[0] + "? Try: kv run " + arguments[0]
                      : UnknownCommand(arguments[0]);
        return false;
    }
    options.command = row->command;
    const auto end = std::find(arguments.begin() + 1, arguments.end(), "--");
    if (end != arguments.end()) options.arguments.assign(end + 1, arguments.end());
    problem = Read(*row, {arguments.begin() + 1, end}, options);
    if (row->command == Command::help && !options.names.empty() && FindCommand(options.names[0]) == nullptr)
        problem = UnknownCommand(options.names[0]);
    if (options.command == Command::help || !problem.empty()) return problem.empty();
    if (!options.names.empty()) options.source = options.names[0];
    if (!options.optimisation.empty()) options.optimisation.insert(0, "-O");
    if (!options.arguments.empty() && !TakesArguments(options.command))
        problem = "arguments after \"--\" belong to kv run";
    if (!options.jobs.empty() && !IsCount(options.jobs))
        problem = "--jobs takes a number from 1 on, not \"" + options.jobs + "\"";
    return problem.empty();
}

std::string HelpText(const std::string& commandWord) {
    Options unused;
    CLI::App app("kv - translate, compile and run Korvel programs\n");
    const CommandRow* const asked = FindCommand(commandWord);
    if (asked != nullptr && asked->word == commandWord) {
        app.name(asked->word);
        app.description(std::string("kv ") + asked->word + " - " + asked->help + "\n");
        Declare(app, *asked, unused);
        return app.help();
    }
    app.formatter(std::make_shared<Layout>());
    app.set_help_flag("-h,--help", "this text");
    app.set_version_flag("-V,--version", "", "the version");
    for (const CommandRow& row : CommandRows()) app.add_subcommand(row.word, row.help)->group("Commands");
    app.footer("kv COMMAND --help tells of a command and its options.");
    return app.help();
}
