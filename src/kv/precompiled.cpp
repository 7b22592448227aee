#include "kv/precompiled.h"

#include <cstdio>
#include <filesystem>
#include <functional>

#include "base/command_quoting.h"
#include "base/paths.h"
#include "base/utf8.h"
#include "kv/hash.h"
#include "kv/platform.h"
#include "kv/private_folder.h"
#include "kv/progress.h"
#include "kv/stamp.h"
#include "kv/toolchain.h"
#include "kv/write_file.h"

namespace fs = std::filesystem;

namespace {

// What the header of every generated program includes.
const char preludeText[] =
    "#include <iostream>\n#include <iomanip>\n#include <string>\n#include <vector>\n#include <algorithm>\n"
    "#include <type_traits>\n#include <cstdlib>\n#include <limits>\n#include <conio.h>\n#include "
    "<functional>\n"
    "#include <chrono>\n#include <cmath>\n";
const char failureInclude[] = "#include <kvfailure.h>\n";

const char compiledSuffix[] = ".gch";  // g++ and clang++ both look for it
const char preludes[] = "prelude";

using Words = std::vector<std::string>;

// Something to be made once.
struct Task {
    std::string kind;                // its folder in the cache
    std::string name;                // the file that is asked for
    std::string text;                // what it holds; empty: it is compiled
    std::vector<std::string> reads;  // files that count beside the compiler
    std::vector<std::function<Words(const std::string& target)>>
        commands;      // one after the other until one succeeds
    std::string work;  // what the user is told
};

std::string Compiled(const Task& task, const std::string& file) {
    return task.text.empty() ? file : file + compiledSuffix;
}

std::string StampOf(const std::string& file) { return file + ".stamp"; }

// All that a change of makes another one.
std::string KeyOf(const Task& task, const Words& compiler) {
    std::string key = task.text;
    for (const auto& command : task.commands) key += ReadableCommandLine(command("")) + "\n";
    for (const Words& files : {CompilerFiles(compiler), task.reads}) {
        for (const std::string& file : files) key += MarkOf(file) + "\n";
    }
    return HashOf(key);
}

bool Run(const Task& task, const Words& command, const std::string& file, bool verbose) {
    ProcessRequest request;
    request.arguments = command;
    request.workingFolder = FolderOf(file);
    request.outputFile = file + ".output";
    request.errorFile = file + ".errors";
    if (verbose) std::fprintf(stderr, "%s\n", ReadableCommandLine(request.arguments).c_str());
    std::string problem;
    Progress progress(task.work);
    request.whileWaiting = progress.Ticks();
    const bool done = RunProcess(request, problem) == 0;
    progress.End();
    std::error_code ignored;
    fs::remove(PathOf(request.outputFile), ignored);
    fs::remove(PathOf(request.errorFile), ignored);
    return done;
}

bool CompileIt(const Task& task, const std::string& file, bool verbose) {
    const std::string compiled = Compiled(task, file), unfinished = compiled + ".new";
    std::error_code failed;
    fs::remove(PathOf(unfinished), failed);
    bool done = false;
    for (const auto& command : task.commands) done = done || Run(task, command(unfinished), file, verbose);
    if (done) fs::rename(PathOf(unfinished), PathOf(compiled), failed);
    std::error_code ignored;
    fs::remove(PathOf(unfinished), ignored);
    return done && !failed;
}

// Whether all of it is what was made here, with nothing in it changed since.
bool IsWhole(const std::string& file, const std::string& key) { return StampHolds(StampOf(file), key); }

bool MakeIt(const Task& task, const std::string& key, const std::string& file, bool verbose) {
    std::error_code ignored;
    const std::string compiled = Compiled(task, file);
    fs::remove(PathOf(StampOf(file)), ignored);
    fs::remove(PathOf(compiled), ignored);
    if (!task.text.empty() && !WriteOver(PathOf(file), task.text)) return false;
    if (!CompileIt(task, file, verbose)) return false;
    StampFiles files;
    if (!task.text.empty()) files.generated = {file};
    files.products = {compiled};
    WriteStamp(StampOf(file), file, key, files);
    return IsWhole(file, key);
}

// The file, made unless it is there; empty when that is not possible.
std::string Prepare(const Task& task, const PrecompileJob& job) {
    if (job.compiler.empty()) return "";
    const std::string key = KeyOf(task, job.compiler);
    const std::string folder = PrivateFolder(CacheFolder(), {task.kind, key});
    if (folder.empty()) return "";
    const std::string file = TextOf(PathOf(folder) / task.name);
    if (IsWhole(file, key)) return file;
    const FileLock lock(file + ".lock", Progress("Waiting for another kv").Ticks());
    // Two writers would spoil it for all programs.
    return lock.IsHeld() && (IsWhole(file, key) || MakeIt(task, key, file, job.verbose)) ? file : "";
}

Words WithFlags(const PrecompileJob& job, const Words& flags) {
    Words command = job.compiler;
    command.push_back("-std=c++11");
    command.insert(command.end(), flags.begin(), flags.end());
    return command;
}

void Add(Words& command, const Words& more) { command.insert(command.end(), more.begin(), more.end()); }

std::string IncludedFile(const PrecompileJob& job, const char* name) {
    return TextOf(PathOf(job.includeFolder) / name);
}

// Makes an object of sources to be linked to programs.
Words ObjectCommand(const PrecompileJob& job, const Words& sources, const std::string& target,
                    const Words& kind, const Words& libraries) {
    const std::string folder = target.empty() ? "" : FolderOf(target);
    Words words = WithFlags(job, {"-O2", "-w"});
    Add(words, kind);
    for (const std::string& source : sources) words.push_back(PathForTool(source, folder));
    Add(words, {"-o", PathForTool(target, folder)});
    Add(words, libraries);
    return words;
}

}  // namespace

std::string PreludesFolder() {
    const std::string cache = CacheFolder();
    return cache.empty() ? "" : TextOf(PathOf(cache) / preludes);
}

std::string PreparePrelude(const PrecompileJob& job) {
    Task task;
    task.kind = preludes;
    task.name = "prelude.h";
    task.text = job.places ? std::string(failureInclude) + preludeText : preludeText;
    task.work = "Compiling the standard headers, once for all programs";
    for (const char* const header : {"conio.h", "kvfailure.h"})
        task.reads.push_back(IncludedFile(job, header));
    task.commands = {[&job, &task](const std::string& target) {
        const std::string folder = target.empty() ? "" : FolderOf(target);
        Words command = WithFlags(job, {job.optimisation, "-pipe", "-w"});
        Add(command, LineTableFlags(job.debug, job.places));
        Add(command,
            {"-I" + PathForTool(job.includeFolder, folder), "-x", "c++-header",
             PathForTool(TextOf(PathOf(folder) / task.name), folder), "-o", PathForTool(target, folder)});
        return command;
    }};
    return Prepare(task, job);
}

void DropPrelude(const std::string& header) {
    std::error_code ignored;
    fs::remove(PathOf(StampOf(header)), ignored);
    fs::remove(PathOf(header + compiledSuffix), ignored);
}

// An object that is made of files among the headers of the installation; they are named first.
static Task ObjectTask(const PrecompileJob& job, const std::string& kind, const std::string& work,
                       const Words& read) {
    Task task;
    task.kind = kind;
    task.name = kind + ".o";
    task.work = "Compiling " + work + ", once for all programs";
    for (const std::string& file : read) task.reads.push_back(IncludedFile(job, file.c_str()));
    return task;
}

std::string PrepareFailureCode(const PrecompileJob& job) {
    const std::string source = IncludedFile(job, "kvfailure.cpp");
    const char* const stack = job.debug ? "-DKV_STACK" : "-UKV_STACK";
    Task task = ObjectTask(
        job, "failure", "what tells of failures",
        {"kvfailure.cpp", "kvfailure.h", "kvfailure_causes.h", "kvfailure_exceptions.h", "kvfailure_lines.h",
         "kvfailure_names.h", "kvfailure_places.h", "kvfailure_signals.h", "kvfailure_windows.h"});
    // With the library that reads line tables inside, where there is one.
    task.commands = {[&](const std::string& target) {
                         return ObjectCommand(job, {source}, target,
                                              {stack, "-DKV_BACKTRACE", "-r", "-nostdlib"}, {"-lbacktrace"});
                     },
                     [&](const std::string& target) {
                         return ObjectCommand(job, {source}, target, {stack, "-c"}, {});
                     }};
    return Prepare(task, job);
}

std::string PrepareDebuggerCode(const PrecompileJob& job) {
    Words read = {"kvdebugger.cpp", "kvdebugger_answers.cpp", "kvdebugger_line.cpp"}, sources;
    for (const std::string& source : read) sources.push_back(IncludedFile(job, source.c_str()));
    Add(read,
        {"kvdebugger_talk.h", "kvdebugger.h", "kvdebugger_values.h", "kvdebug.h", "kvfailure.h", "conio.h"});
    Task task = ObjectTask(job, "debugger", "the debugger", read);
    task.commands = {[&](const std::string& target) {
        return ObjectCommand(job, sources, target, {"-r", "-nostdlib"}, {});
    }};
    return Prepare(task, job);
}
