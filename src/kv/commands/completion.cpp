// kv completion: what makes shells complete the words of kv.
#include <cstdio>
#include <sstream>
#include <string>

#include "kv/commands/commands.h"
#include "kv/diagnostics.h"

namespace {

bool Takes(const CommandRow& command, const OptionRow& option) {
    return (option.commands & Bit(command.command)) != 0;
}

bool TakesFiles(const CommandRow& command) {
    const std::string noun = command.noun;
    return noun == "program" || noun == "file";
}

std::string Quoted(std::string text) {
    for (std::size_t at = text.find('\''); at != std::string::npos; at = text.find('\'', at + 4))
        text.replace(at, 1, "'\\''");
    return "'" + text + "'";
}

std::string CommandWords() {
    std::string words;
    for (const CommandRow& row : CommandRows()) words += (words.empty() ? "" : " ") + std::string(row.word);
    return words;
}

std::string ForBash() {
    std::ostringstream text;
    text << "# bash completion of kv\n_kv() {\n    local word=${COMP_WORDS[COMP_CWORD]} words= files=\n"
            "    if [ \"$COMP_CWORD\" = 1 ]; then\n        mapfile -t COMPREPLY < <(compgen -W '"
         << CommandWords() << "' -- \"$word\")\n        return\n    fi\n    case ${COMP_WORDS[1]} in\n";
    for (const CommandRow& row : CommandRows()) {
        text << "    " << row.word << ") words='--help";
        for (const OptionRow& option : OptionRows()) {
            if (Takes(row, option)) text << " " << option.names;
        }
        text << "'" << (TakesFiles(row) ? " files=yes" : "")
             << (row.command == Command::help ? " words='" + CommandWords() + "'" : "")
             << (row.command == Command::completion ? " words='bash zsh fish'" : "") << " ;;\n";
    }
    text
        << "    esac\n    case $word in\n    -*) files= ;;\n    *) [ -z \"$files\" ] || words= ;;\n    esac\n"
           "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\"\n"
           "        [ -z \"$files\" ] || { compgen -f -X '!*.kvl' -- \"$word\"; compgen -d -- \"$word\"; })\n"
           "}\ncomplete -o filenames -F _kv kv\n";
    return text.str();
}

std::string ForZsh() {
    std::ostringstream text;
    text << "#compdef kv\n# zsh completion of kv\nlocal -a commands\ncommands=(\n";
    for (const CommandRow& row : CommandRows())
        text << "    " << Quoted(std::string(row.word) + ":" + row.help) << "\n";
    text << ")\nif (( CURRENT == 2 )); then\n    _describe command commands\n    return\nfi\n"
            "shift words\n(( CURRENT-- ))\ncase $words[1] in\n";
    for (const CommandRow& row : CommandRows()) {
        text << row.word << ") _arguments '--help[this text]'";
        for (const OptionRow& option : OptionRows()) {
            if (!Takes(row, option)) continue;
            const std::string value = option.value;
            const std::string choices =
                *option.choices == '\0' ? "_files" : "(" + std::string(option.choices) + ")";
            const bool isJoined = *option.choices != '\0' && std::string(option.names).size() == 2;
            text << " \\\n    "
                 << Quoted(option.names + std::string(isJoined ? "-" : "") + "[" + option.help + "]" +
                           (value.empty() ? "" : ":" + value + ":" + choices));
        }
        if (TakesFiles(row)) text << " \\\n    '*:program:_files -g \"*.kvl\"'";
        if (row.command == Command::help) text << " \\\n    '1:command:(" << CommandWords() << ")'";
        if (row.command == Command::completion) text << " \\\n    '1:shell:(bash zsh fish)'";
        text << " ;;\n";
    }
    text << "esac\n";
    return text.str();
}

std::string ForFish() {
    std::ostringstream text;
    text << "# fish completion of kv\ncomplete -c kv -f\n";
    for (const CommandRow& row : CommandRows()) {
        const std::string seen =
            std::string("complete -c kv -n '__fish_seen_subcommand_from ") + row.word + "'";
        text << "complete -c kv -n __fish_use_subcommand -a " << row.word << " -d " << Quoted(row.help)
             << "\n";
        if (TakesFiles(row)) text << seen << " -F\n";
        for (const OptionRow& option : OptionRows()) {
            if (!Takes(row, option)) continue;
            const std::string name = option.names;
            text << seen << (name[1] == '-' ? " -l " + name.substr(2) : " -s " + name.substr(1))
                 << (*option.value == '\0'     ? ""
                     : *option.choices == '\0' ? " -r -F"
                                               : " -x -a ")
                 << (*option.choices == '\0' ? "" : Quoted(option.choices)) << " -d " << Quoted(option.help)
                 << "\n";
        }
    }
    return text.str();
}

const struct {
    const char* shell;
    std::string (*script)();
} shellRows[] = {{"bash", ForBash}, {"zsh", ForZsh}, {"fish", ForFish}};

}  // namespace

int CompletionCommand(const Options& options) {
    for (const auto& row : shellRows) {
        if (options.source != row.shell) continue;
        std::fputs(row.script().c_str(), stdout);
        return 0;
    }
    return Fail("kv completion knows bash, zsh and fish, not " + options.source);
}
