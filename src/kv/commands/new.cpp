// kv new: a folder with a program that runs.
#include <cstdio>
#include <filesystem>
#include <string>

#include "base/utf8.h"
#include "kv/commands/commands.h"
#include "kv/diagnostics.h"
#include "kv/write_file.h"

namespace fs = std::filesystem;

namespace {

std::string ProgramText(const std::string& name) {
    return "; " + name + ": kv run " + name +
           ".kvl\n"
           "\n"
           "Function Greeting:String(name:String)\n"
           "    Return \"Hello, \" + name + \"!\"\n"
           "EndFunction\n"
           "\n"
           "Function Main\n"
           "    For Local i = 1 To 3\n"
           "        Print i & \" \" & Greeting(\"world\")\n"
           "    Next\n"
           "EndFunction\n";
}

// What kv makes: its hidden folder, and the program.
std::string IgnoredFiles(const std::string& name) {
    return ".kvbuild/\n/" + name + "\n/" + name + ".exe\n*.linkflags\n";
}

}  // namespace

int NewCommand(const Options& options) {
    std::error_code failed;
    const fs::path folder = (fs::current_path(failed) / PathOf(options.source)).lexically_normal();
    const fs::path named = folder.has_filename() ? folder : folder.parent_path();
    std::string name = TextOf(named.filename());
    if (named.extension() == ".kvl") return Fail("kv new takes the name of a program, without .kvl");
    if (name.empty() || name.find_first_of("\r\n") != std::string::npos)
        return Fail("\"" + options.source + "\" is no name of a program");
    const fs::path program = named / PathOf(name + ".kvl"), ignored = named / ".gitignore";
    if (fs::exists(fs::symlink_status(program, failed)))
        return Fail(TextOf(program) + " is there already; it stays as it is");
    fs::create_directories(named, failed);
    const bool keepsIgnored = fs::exists(fs::symlink_status(ignored, failed));
    if (!fs::is_directory(named, failed) || !WriteOver(program, ProgramText(name)) ||
        (!keepsIgnored && !WriteOver(ignored, IgnoredFiles(name))))
        return Fail("cannot write in " + TextOf(named));
    const std::string typed = TextOf(PathOf(options.source) / PathOf(name + ".kvl"));
    const char* const quote = typed.find(' ') == std::string::npos ? "" : "\"";
    std::printf("made %s; try: kv run %s%s%s\n", typed.c_str(), quote, typed.c_str(), quote);
    return 0;
}
