#include "kv/install.h"

#include <cstdio>
#include <filesystem>

#include "base/utf8.h"
#include "kv/compile.h"
#include "kv/diagnostics.h"
#include "kv/inputs.h"
#include "kv/installed_record.h"
#include "kv/platform.h"
#include "kv/write_file.h"

namespace fs = std::filesystem;

namespace {

// One file to leave, and where.
struct Delivery {
    fs::path from;
    fs::path to;
};

fs::path TargetOf(const Job& job) {
    fs::path target = job.options.outputFile.empty()
                          ? PathOf(job.sourceFolder) / PathOf(ProgramName(job.source))
                          : PathOf(job.typedFolder) / PathOf(job.options.outputFile);
    const std::string suffix = ProgramSuffix(job);
    if (!suffix.empty() && target.extension() != suffix) target += suffix;
    return target.lexically_normal();
}

// The file that the program is made from and that lies there; empty if none does.
std::string SourceAt(const fs::path& place, const std::vector<std::string>& sources) {
    for (const std::string& source : sources) {
        std::error_code failed;
        if (fs::equivalent(place, PathOf(source), failed)) return source;
    }
    return "";
}

// Neither a device nor a pipe; what is missing, and a link, can be written over.
bool IsPlainFile(const fs::path& place) {
    std::error_code failed;
    const fs::file_status status = fs::symlink_status(place, failed);
    return !fs::exists(status) || fs::is_regular_file(status) || fs::is_symlink(status);
}

bool CanLeaveProgram(const Job& job, const fs::path& target, const std::vector<std::string>& sources) {
    std::error_code failed;
    if (fs::is_directory(target, failed))
        return Refuse(TextOf(target) + " is a folder; name the program with -o");
    if (!IsPlainFile(target))
        return Refuse(TextOf(target) + " is a device or a pipe; name the program with -o");
    if (!fs::is_directory(target.parent_path(), failed))
        return Refuse("the folder " + TextOf(target.parent_path()) + " does not exist");
    const std::string source = SourceAt(target, sources);
    if (source.empty()) return true;
    return Refuse("the program would overwrite its source " + ShortPath(source, job.typedFolder) +
                  "; name it with -o");
}

bool HasContentOf(const fs::path& place, const fs::path& file) {
    std::error_code failed;
    return fs::is_regular_file(place, failed) &&
           fs::file_size(place, failed) == fs::file_size(file, failed) &&
           ReadWhole(TextOf(place)) == ReadWhole(TextOf(file));
}

// A library takes the place of nothing but what kv has put there.
bool CanLeaveLibrary(const Job& job, const Delivery& library, const fs::path& program,
                     const std::vector<std::string>& sources) {
    const std::string start = "the shared library " + TextOf(library.to.filename()) + " would overwrite ";
    std::error_code failed;
    if (library.to == program || fs::equivalent(library.to, program, failed))
        return Refuse(start + "the program; name the program with -o");
    const std::string source = SourceAt(library.to, sources);
    if (!source.empty() && !HasContentOf(library.to, library.from)) {
        return Refuse(start + "the source " + ShortPath(source, job.typedFolder) +
                      "; build the program in another folder, with -o");
    }
    if (!fs::exists(fs::symlink_status(library.to, failed)) || HasContentOf(library.to, library.from))
        return true;
    if (fs::is_regular_file(library.to, failed) && IsInstalledByKv(TextOf(library.to))) return true;
    return Refuse(start + ShortPath(TextOf(library.to), job.typedFolder) +
                  ", which is not kv's; move that away, or build the program in another folder, with -o");
}

// A library in a folder of its own: one that is a link leads elsewhere.
bool LeadsElsewhere(const fs::path& library, const fs::path& program) {
    std::error_code failed;
    const fs::path top = program.parent_path();
    const fs::path below = library.lexically_relative(top).parent_path();
    return fs::weakly_canonical(library.parent_path(), failed) !=
           (below.empty() ? fs::canonical(top, failed) : fs::canonical(top, failed) / below);
}

bool Deliver(const Delivery& library) {
    std::error_code failed;  // which the next step meets, too
    fs::create_directories(library.to.parent_path(), failed);
    RecordInstalled(TextOf(library.to), TextOf(library.from));  // first, in case kv is killed
    return HasContentOf(library.to, library.from) || CopyOver(library.from, library.to);
}

}  // namespace

bool InstallAs(const Job& job, const fs::path& target) {
    const std::vector<std::string> sources = MadeFrom(job);
    if (!CanLeaveProgram(job, target, sources)) return false;
    std::vector<Delivery> libraries;
    for (const std::string& name : SharedLibraries(job)) {
        const Delivery library = {PathOf(job.build.cppFolder) / PathOf(name),
                                  (target.parent_path() / PathOf(name)).lexically_normal()};
        if (LeadsElsewhere(library.to, target)) {
            return Refuse("the shared library " + name +
                          " would leave the program's folder by a link; name the program with -o");
        }
        if (!CanLeaveLibrary(job, library, target, sources)) return false;
        libraries.push_back(library);
    }
    if (!CopyOver(PathOf(job.build.program), target)) return false;
    for (const Delivery& library : libraries) {
        if (!Deliver(library)) return false;
    }
    return true;
}

bool Install(const Job& job) {
    const fs::path target = TargetOf(job);
    if (!InstallAs(job, target)) return false;
    std::printf("built %s\n", ShortPath(TextOf(target), job.typedFolder).c_str());
    return true;
}
