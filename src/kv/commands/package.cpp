// kv package: a program with all that it needs, in one folder or archive.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "base/places.h"
#include "base/text.h"
#include "base/utf8.h"
#include "kv/commands/commands.h"
#include "kv/diagnostics.h"
#include "kv/install.h"
#include "kv/job.h"
#include "kv/make.h"
#include "kv/platform.h"
#include "kv/progress.h"
#include "kv/toolchain.h"
#include "kv/write_file.h"

namespace fs = std::filesystem;

namespace {

// Archives by the end of their names, and what makes them: the folder to pack stands behind the archive.
const struct {
    const char* suffix;
    const char* tool;
    const char* flags;
} archives[] = {{".tar.gz", "tar", "-czf"}, {".tgz", "tar", "-czf"}, {".zip", "zip", "-qr"}};
const auto* const noArchive = std::end(archives);

const auto* ArchiveOf(const std::string& name) {
    return std::find_if(std::begin(archives), std::end(archives), [&name](const auto& row) {
        return name != row.suffix && EndsWith(name, row.suffix);
    });
}

// The end of the name of an archive of another kind; null for all else.
const char* OtherArchive(const std::string& name) {
    for (const char* suffix : {".7z", ".bz2", ".deb", ".gz", ".rar", ".tar", ".xz"})
        if (EndsWith(name, suffix) && ArchiveOf(name) == noArchive) return suffix;
    return nullptr;
}

// Beside the source, unless -o says where.
fs::path TargetOf(const Job& job) {
    const std::string usual = ProgramName(job.source) + (IsForWindows(job.options) ? ".zip" : ".tar.gz");
    return (job.options.outputFile.empty() ? PathOf(job.sourceFolder) / PathOf(usual)
                                           : PathOf(job.typedFolder) / PathOf(job.options.outputFile))
        .lexically_normal();
}

// Data lies in the package as it does beside the source; what comes from elsewhere lies at its top.
bool CopyData(const Job& job, const std::string& name, const fs::path& folder) {
    std::error_code failed;
    const fs::path data = fs::weakly_canonical(PathOf(job.typedFolder) / PathOf(name), failed);
    if (!fs::exists(data, failed)) return Refuse("cannot find " + name + ", which is to be packed");
    const fs::path way = data.lexically_relative(fs::weakly_canonical(PathOf(job.sourceFolder), failed));
    const bool isBelow = !way.empty() && *way.begin() != ".." && way != ".";
    if (!LeadsOutOf(TextOf(data), TextOf(folder)))
        return Refuse("cannot pack " + name +
                      ", in which the package itself is made; name what to pack of it");
    const fs::path place = folder / (isBelow ? way : data.filename());
    if (fs::exists(place, failed))
        return Refuse("two things to pack have the name " + TextOf(place.filename()));
    fs::create_directories(place.parent_path(), failed);
    fs::copy(data, place, fs::copy_options::recursive, failed);
    return !failed || Refuse("cannot copy " + name + ": " + failed.message());
}

bool Fill(const Job& job, const fs::path& folder) {
    std::error_code failed;
    fs::create_directories(folder, failed);
    if (!InstallAs(job, folder / PathOf(ProgramName(job.source) + ProgramSuffix(job)))) return false;
    for (const std::string& name : job.options.data) {
        if (!CopyData(job, name, folder)) return false;
    }
    return true;
}

bool Pack(const Job& job, const fs::path& folder, const fs::path& target) {
    const auto* const archive = ArchiveOf(TextOf(target));
    std::error_code failed;
    const fs::path unfinished = folder.parent_path() / PathOf(std::string("packed") + archive->suffix);
    ProcessRequest request;
    request.arguments = {FindProgram(archive->tool), archive->flags, TextOf(unfinished),
                         TextOf(folder.filename())};
    if (request.arguments[0].empty())
        return Refuse(std::string(archive->tool) + " is needed for " + archive->suffix +
                      " and was not found; install it, or " + "name a folder with -o");
    request.workingFolder = TextOf(folder.parent_path());
    request.outputFile = job.build.compilerOutput;
    request.errorFile = job.build.compilerErrors;
    std::string problem;
    const int status = RunProcess(request, problem);
    if (status != 0)
        return Refuse(std::string(archive->tool) + " has failed: " + problem + ReadWhole(request.errorFile));
    return CopyOver(unfinished, target);
}

bool Package(const Job& job) {
    // Before it is seen what is there: another kv may be packing into the same place.
    const FileLock lock(job.build.lock, Progress("Waiting for another kv").Ticks());
    const fs::path target = TargetOf(job);
    const std::string shown = ShortPath(TextOf(target), job.typedFolder);
    std::error_code failed;
    const bool isArchive = ArchiveOf(TextOf(target)) != noArchive;
    const fs::file_status status = fs::symlink_status(target, failed);
    if (fs::exists(status) && !(isArchive && fs::is_regular_file(status)))
        return Refuse(shown + " is there already; remove it, or name another place with -o");
    const fs::path packing = isArchive ? PathOf(job.build.folder) / "package" : target;
    if (isArchive) fs::remove_all(packing, failed);
    const fs::path folder = isArchive ? packing / PathOf(ProgramName(job.source)) : target;
    const bool isPacked = Fill(job, folder) && (!isArchive || Pack(job, folder, target));
    if (isArchive || !isPacked) fs::remove_all(packing, failed);
    if (isPacked) std::printf("packed %s\n", shown.c_str());
    return isPacked;
}

}  // namespace

int PackageCommand(const Options& options) {
    Job job;
    if (const char* other = OtherArchive(options.outputFile)) {
        Refuse(std::string("kv packs into folders, .tar.gz and .zip, not into ") + other);
        return failure;
    }
    return PrepareJob(options, job) && Make(job) && Package(job) ? 0 : failure;
}
