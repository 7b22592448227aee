#include "kv/precompiled.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "kv/command_quoting.h"
#include "kv/hash.h"
#include "kv/platform.h"
#include "kv/progress.h"
#include "kv/stamp.h"
#include "kv/toolchain.h"

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
    command.insert(command.end(), {"-I" + job.includeFolder, "-x", "c++-header", header, "-o", compiled});
    return command;
}

bool CompilePrelude(const PreludeJob& job, const std::string& header, const std::string& compiled) {
    const std::string unfinished = compiled + ".new";
    ProcessRequest request;
    request.arguments = PreludeCommand(job, header, unfinished);
    request.outputFile = header + ".output";
    request.errorFile = header + ".errors";
    if (job.verbose) std::fprintf(stderr, "%s\n", ReadableCommandLine(request.arguments).c_str());
    std::string problem;
    std::error_code failed;
    Progress progress("Compiling the standard headers, once for all programs");
    request.whileWaiting = progress.Ticks();
    const bool done = RunProcess(request, problem) == 0;
    progress.End();
    if (done) fs::rename(unfinished, compiled, failed);
    std::error_code ignored;
    fs::remove(unfinished, ignored);
    fs::remove(request.outputFile, ignored);
    fs::remove(request.errorFile, ignored);
    return done && !failed;
}

}  // namespace

std::string PreludesFolder() {
    const std::string cache = UserCacheFolder();
    return cache.empty() ? "" : (fs::path(cache) / "korvel" / "prelude").lexically_normal().string();
}

std::string PreludePath(const PreludeJob& job) {
    const std::string folder = PreludesFolder();
    if (folder.empty() || job.compiler.empty()) return "";
    std::string key = preludeText + ReadableCommandLine(PreludeCommand(job, "", "")) + "\n";
    for (const std::string& program : CompilerFiles(job.compiler)) key += MarkOf(program) + "\n";
    key += MarkOf((fs::path(job.includeFolder) / "conio.h").string());
    return (fs::path(folder) / HashOf(key) / "prelude.h").string();
}

bool PreparePrelude(const PreludeJob& job, const std::string& path) {
    const std::string compiled = path + compiledSuffix;
    std::error_code failed;
    if (fs::exists(path, failed) && fs::exists(compiled, failed)) return true;
    fs::create_directories(fs::path(path).parent_path(), failed);
    if (failed) return false;
    const FileLock lock(path + ".lock", Progress("Waiting for another kv").Ticks());
    if (fs::exists(path, failed) && fs::exists(compiled, failed)) return true;
    std::ofstream header(path, std::ios::binary);
    header << preludeText;
    header.close();
    return header.good() && CompilePrelude(job, path, compiled);
}

void DropPrelude(const std::string& path) {
    std::error_code ignored;
    fs::remove(path + compiledSuffix, ignored);
}
