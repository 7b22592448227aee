#include "kv/commands/commands.h"

#include "kv/diagnostics.h"

namespace {

const std::size_t any = static_cast<std::size_t>(-1);
constexpr unsigned leaving = Bit(Command::build) | Bit(Command::package);
constexpr unsigned making = Bit(Command::run) | Bit(Command::watch) | leaving;
constexpr unsigned compiling = making | Bit(Command::test) | Bit(Command::debug);
constexpr unsigned starting = Bit(Command::run) | Bit(Command::watch) | Bit(Command::test);
constexpr unsigned translating = compiling | Bit(Command::check);

}  // namespace

int Fail(const std::string& problem) {
    ShowProblem(problem);
    return failure;
}

const std::vector<CommandRow>& CommandRows() {
    static const std::vector<CommandRow> rows = {
        {Command::run, "run", "PROGRAM [OPTIONS] [-- ARGUMENTS]", "program", 1, 1,
         "which program? Name its main file: kv run game.kvl", "run a program", RunCommand},
        {Command::build, "build", "PROGRAM [OPTIONS]", "program", 1, 1,
         "which program? Name its main file: kv build game.kvl", "make an executable program", BuildCommand},
        {Command::check, "check", "PROGRAMS [OPTIONS]", "program", 1, any,
         "which program? Name its main file: kv check game.kvl", "look for mistakes, make nothing",
         CheckCommand},
        {Command::test, "test", "[FOLDERS] [OPTIONS]", "program", 0, any, "",
         "run the programs *_test.kvl of folders and tell which fail", TestCommand},
        {Command::doc, "doc", "[WORD]", "word", 0, 1, "",
         "show what the manual says of a word of the language", DocCommand},
        {Command::explain, "explain", "[WARNING]", "warning", 0, 1, "",
         "tell what a warning means, and how to do without it", ExplainCommand},
        {Command::create, "new", "NAME", "program", 1, 1, "what shall it be called? kv new game",
         "begin a program in a folder of its own", NewCommand},
        {Command::watch, "watch", "PROGRAM [OPTIONS] [-- ARGUMENTS]", "program", 1, 1,
         "which program? Name its main file: kv watch game.kvl",
         "run a program, and again whenever one of its sources is saved", WatchCommand},
        {Command::package, "package", "PROGRAM [OPTIONS]", "program", 1, 1,
         "which program? Name its main file: kv package game.kvl",
         "put a program, its libraries and data into one folder or archive", PackageCommand},
        {Command::clean, "clean", "[PROGRAMS]", "program", 0, any, "",
         "remove what kv has made and can make again, of programs or of those in folders", CleanCommand},
        {Command::format, "fmt", "FILES [OPTIONS]", "file", 1, any,
         "which files? kv fmt game.kvl, or kv fmt . for all in this folder",
         "bring sources into their usual form: indentation, blanks, spelling of keywords", FmtCommand},
        {Command::lsp, "lsp", "", "", 0, 0, "",
         "serve an editor with mistakes, names and texts while you type (language server protocol)",
         LspCommand},
        {Command::debug, "debug", "PROGRAM [OPTIONS] [-- ARGUMENTS]", "program", 1, 1,
         "which program? Name its main file: kv debug game.kvl",
         "run a program step by step, and look at its variables", DebugCommand},
        {Command::dap, "dap", "", "", 0, 0, "",
         "serve an editor that runs programs step by step (debug adapter protocol)", DapCommand},
        {Command::completion, "completion", "SHELL", "shell", 1, 1, "which shell? kv completion bash",
         "write what makes bash, zsh or fish complete the words of kv", CompletionCommand},
        {Command::help, "help", "[COMMAND]", "command", 0, 1, "", "tell how kv, or a command, is used",
         HelpCommand},
        {Command::version, "version", "", "", 0, 0, "", "tell the version of kv", VersionCommand},
    };
    return rows;
}

const std::vector<OptionRow>& OptionRows() {
    static const std::vector<OptionRow> rows = {
        {"-o", &Options::outputFile, "FILE", "", leaving,
         "the program to make; the folder, .tar.gz or .zip to pack it into"},
        {"--jobs", &Options::jobs, "NUMBER", "", starting,
         "how many calls of the C++ compiler to make side by side (one for each core)"},
        {"--timeout", &Options::timeout, "SECONDS", "", Bit(Command::test),
         "a program that runs longer has failed (60)"},
        {"--data", &Options::data, "PATH", "", Bit(Command::package), "a file or folder to pack as well"},
        {"--target", &Options::target, "SYSTEM", "windows", leaving, "the system to make the program for"},
        {"--static", &Options::isStatic, "", "", leaving,
         "put all of C++'s library into the program, for systems that have another one or none"},
        {"--safe", &Options::safe, "", "", translating,
         "check divisions and array bounds while the program runs"},
        {"--debug", &Options::debug, "", "", translating,
         "hooks for a debugger (KVDEBUG=trace shows every step)"},
        {"-O", &Options::optimisation, "LEVEL", "0 1 2 3", translating,
         "compile fast (-O0, usual for run) or for speed (-O2, usual for build)"},
        {"--plain", &Options::plain, "", "", translating,
         "the C++ in its plain form, easier to read; its programs run more slowly and do not say where they "
         "fail"},
        {"--keep-cpp", &Options::keepCppFolder, "DIR", "", making, "write the generated C++ to DIR"},
        {"--check", &Options::onlyCheck, "", "", Bit(Command::format),
         "write nothing, tell which files are not in their usual form (status 1)"},
        {"--cpp", &Options::checkCpp, "", "", Bit(Command::check),
         "look for mistakes in inline C++, too: takes the C++ compiler"},
        {"--message-format", &Options::messageFormat, "FORMAT", "human short json", translating,
         "for people; each mistake in one line; or as an object of JSON for programs"},
        {"--no-warnings", &Options::noWarnings, "", "", translating,
         "say nothing of what is allowed but hardly meant"},
        {"--warnings-as-errors", &Options::warningsAsErrors, "", "", translating,
         "take warnings for mistakes"},
        {"--verbose", &Options::verbose, "", "", translating,
         "show the commands that are run and what they say"},
    };
    return rows;
}
