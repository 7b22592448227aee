#include "kv/precompiled.h"

#include <cstdio>
#include <filesystem>

#include "base/paths.h"
#include "base/utf8.h"
#include "kv/command_quoting.h"
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

const char compiledSuffix[] = ".gch";  // g++ and clang++ both look for it

std::vector<std::string> PreludeCommand(const PreludeJob& job, const std::string& header,
                                        const std::string& compiled) {
    std::vector<std::string> command = job.compiler;
    command.insert(command.end(), {"-std=c++11", job.optimisation, "-pipe", "-w"});
    if (job.debug) command.push_back("-g");
    const std::string folder = FolderOf(header);
    const auto forTool = [&](const std::string& path) { return PathForTool(path, folder); };
    command.push_back("-I" + forTool(job.includeFolder));
    command.insert(command.end(), {"-x", "c++-header", forTool(header), "-o", forTool(compiled)});
    return command;
}

bool CompilePrelude(const PreludeJob& job, const std::string& header, const std::string& compiled) {
    const std::string unfinished = compiled + ".new";
    ProcessRequest request;
    request.arguments = PreludeCommand(job, header, unfinished);
    request.workingFolder = FolderOf(header);
    request.outputFile = header + ".output";
    request.errorFile = header + ".errors";
    if (job.verbose) std::fprintf(stderr, "%s\n", ReadableCommandLine(request.arguments).c_str());
    std::string problem;
    std::error_code failed;
    fs::remove(PathOf(unfinished), failed);
    Progress progress("Compiling the standard headers, once for all programs");
    request.whileWaiting = progress.Ticks();
    const bool done = RunProcess(request, problem) == 0;
    progress.End();
    if (done) fs::rename(PathOf(unfinished), PathOf(compiled), failed);
    std::error_code ignored;
    fs::remove(PathOf(unfinished), ignored);
    fs::remove(PathOf(request.outputFile), ignored);
    fs::remove(PathOf(request.errorFile), ignored);
    return done && !failed;
}

std::string StampOf(const std::string& header) { return header + ".stamp"; }

// Whether both forms of the header are what was made here, with nothing in them changed since.
bool IsWhole(const PreludeJob& job, const std::string& header) {
    return StampHolds(StampOf(header),
                      ReadableCommandLine(PreludeCommand(job, header, header + compiledSuffix)));
}

bool MakePrelude(const PreludeJob& job, const std::string& header) {
    const std::string compiled = header + compiledSuffix;
    DropPrelude(header);
    if (!WriteOver(PathOf(header), preludeText) || !CompilePrelude(job, header, compiled)) return false;
    StampFiles files;
    files.generated = {header};
    files.products = {compiled};
    WriteStamp(StampOf(header), header, ReadableCommandLine(PreludeCommand(job, header, compiled)), files);
    return IsWhole(job, header);
}

}  // namespace

std::string PreludesFolder() {
    const std::string cache = CacheFolder();
    return cache.empty() ? "" : TextOf(PathOf(cache) / "prelude");
}

std::string PreparePrelude(const PreludeJob& job) {
    if (job.compiler.empty()) return "";
    std::string key = preludeText + ReadableCommandLine(PreludeCommand(job, "", "")) + "\n";
    for (const std::string& program : CompilerFiles(job.compiler)) key += MarkOf(program) + "\n";
    key += MarkOf(TextOf(PathOf(job.includeFolder) / "conio.h"));
    const std::string folder = PrivateFolder(CacheFolder(), {"prelude", HashOf(key)});
    if (folder.empty()) return "";
    const std::string header = TextOf(PathOf(folder) / "prelude.h");
    if (IsWhole(job, header)) return header;
    const FileLock lock(header + ".lock", Progress("Waiting for another kv").Ticks());
    // Two writers would spoil it for all programs.
    return lock.IsHeld() && (IsWhole(job, header) || MakePrelude(job, header)) ? header : "";
}

void DropPrelude(const std::string& header) {
    std::error_code ignored;
    fs::remove(PathOf(StampOf(header)), ignored);
    fs::remove(PathOf(header + compiledSuffix), ignored);
}
