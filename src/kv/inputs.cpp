#include "kv/inputs.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>

#include "base/utf8.h"
#include "kv/platform.h"
#include "kv/precompiled.h"
#include "kv/stamp.h"
#include "kv/toolchain.h"

namespace fs = std::filesystem;

namespace {

using Paths = std::vector<std::string>;

// Tools run in the source's folder.
std::string FullPath(const Job& job, const std::string& file) {
    return TextOf((PathOf(job.sourceFolder) / PathOf(file)).lexically_normal());
}

bool IsBelow(const std::string& path, const std::string& folder) {
    return path.size() > folder.size() && path.compare(0, folder.size(), folder) == 0 &&
           (path[folder.size()] == '/' || path[folder.size()] == '\\');
}

bool Contains(const std::vector<std::string>& paths, const std::string& path) {
    return std::find(paths.begin(), paths.end(), path) != paths.end();
}

std::vector<Compilation> CompilationsOf(const Job& job) {
    if (!job.compilations.empty()) return job.compilations;
    return {{job.mainCpp, job.build.dependencies}};
}

// Where the compiler looks for headers before it comes to the system's.
std::vector<std::string> SearchedFolders(const Job& job) {
    std::vector<std::string> folders = {job.sourceFolder, TextOf(PathOf(job.installation) / "include")};
    for (const std::vector<std::string>& flags : {job.compiler, job.linkerFlags}) {
        for (const std::string& flag : flags) {
            if (flag.compare(0, 2, "-I") == 0) folders.push_back(FullPath(job, flag.substr(2)));
        }
    }
    for (const char* const variable : {"CPATH", "CPLUS_INCLUDE_PATH"}) {
        std::istringstream list(EnvironmentVariable(variable));
        for (std::string folder; std::getline(list, folder, searchPathSeparator);)
            folders.push_back(FullPath(job, folder));
    }
    for (std::string& folder : folders) {
        if (folder.size() > 1 && folder.back() == '/') folder.pop_back();
    }
    return folders;
}

// The header by any name under which it may have been asked for, in each of the folders.
void AddRivals(const std::string& header, const std::vector<std::string>& folders,
               std::set<std::string>& rivals) {
    std::set<std::string> names = {TextOf(PathOf(header).filename())};
    for (const std::string& folder : folders) {
        if (IsBelow(header, folder)) names.insert(header.substr(folder.size() + 1));
    }
    for (const std::string& folder : folders) {
        for (const std::string& name : names) rivals.insert(TextOf(PathOf(folder) / PathOf(name)));
    }
    rivals.erase(header);
}

}  // namespace

std::vector<std::string> ToolFiles(const Job& job) {
    const fs::path installation = PathOf(job.installation);
    std::vector<std::string> files = {job.kv, TextOf(installation / "config" / "keywords.txt"),
                                      TextOf(installation / "config" / "cpp.txt")};
    for (const std::string& program : CompilerFiles(job.compiler)) files.push_back(program);
    for (const char* folder : {"userlibs", "include"}) {
        std::error_code failed;
        fs::recursive_directory_iterator entry(installation / folder, failed);
        for (; !failed && entry != fs::recursive_directory_iterator(); entry.increment(failed)) {
            if (entry->is_regular_file(failed)) files.push_back(TextOf(entry->path()));
        }
    }
    return files;
}

std::vector<std::string> FilesTranslated(const Job& job) {
    std::vector<std::string> files = job.translation.sources;
    for (const std::string& file : job.translation.declarations) files.push_back(file);
    return files;
}

std::vector<std::string> RivalsOfTranslation(const Job& job) {
    const auto below = [](const std::string& folder, const char* name) {
        return TextOf(PathOf(folder) / name);
    };
    const std::string installed = below(job.installation, "userlibs"),
                      own = below(job.sourceFolder, "userlibs");
    const struct {
        const std::vector<std::string>& files;
        std::string folder;                    // of one that was found
        std::vector<std::string> comesBefore;  // where it would have been found sooner
    } rows[] = {{job.translation.sources, below(job.installation, "lib"), {job.sourceFolder}},
                {job.translation.sources, own, {job.sourceFolder}},
                {job.translation.sources, installed, {job.sourceFolder, own}},
                {job.translation.declarations, own, {installed}}};
    std::vector<std::string> rivals;
    for (const auto& row : rows) {
        for (const std::string& file : row.files) {
            if (!IsBelow(file, row.folder)) continue;
            for (const std::string& folder : row.comesBefore)
                rivals.push_back(TextOf(PathOf(folder) / PathOf(file.substr(row.folder.size() + 1))));
        }
    }
    return rivals;
}

bool FilesReadByCompiler(const Job& job, FilesRead& files) {
    const std::string preludes = PreludesFolder();
    const std::vector<std::string> settled = CompilerFolders(job.compiler);
    const std::vector<std::string> searched = SearchedFolders(job);
    std::set<std::string> rivals, seen;
    bool isSound = true;
    for (const Compilation& compilation : CompilationsOf(job)) {
        bool namesMain = compilation.main.empty();
        for (const std::string& file : FilesInMakeRule(ReadWhole(compilation.dependencies))) {
            namesMain = namesMain || file == compilation.main;
            if (!seen.insert(file).second) continue;
            const std::string path = FullPath(job, file);
            namesMain = namesMain || path == compilation.main;
            if (!preludes.empty() && IsBelow(path, preludes)) continue;
            const bool isSettled =
                std::any_of(settled.begin(), settled.end(),
                            [&](const std::string& folder) { return IsBelow(path, folder); });
            const bool isGenerated = IsBelow(path, job.build.cppFolder) || IsBelow(path, job.build.folder);
            if (!isSettled) (isGenerated ? files.generated : files.headers).push_back(path);
            // Of the compiler's many headers nobody means to replace those in folders of their own.
            const bool canHaveRivals = !isSettled || Contains(settled, TextOf(PathOf(path).parent_path()));
            if (canHaveRivals && !isGenerated) AddRivals(path, searched, rivals);
        }
        isSound = isSound && namesMain;
    }
    files.rivals.assign(rivals.begin(), rivals.end());
    return isSound;
}

std::vector<std::string> FilesReadByLinker(const Job& job) {
    std::vector<std::string> paths;
    for (const std::string& file : FilesOfLinker(ReadWhole(job.build.linkDependencies))) {
        paths.push_back(FullPath(job, file));
    }
    for (const std::string& object : job.objects.empty() ? Paths{job.build.object} : job.objects)
        if (!Contains(paths, object)) return {};
    std::vector<std::string> files;
    for (const std::string& path : paths) {
        if (!IsBelow(path, job.build.folder)) files.push_back(path);
    }
    for (const std::string& flag : job.linkerFlags) {
        if (flag.compare(0, 2, "-L") == 0) files.push_back(FullPath(job, flag.substr(2)));
    }
    return files;
}

std::vector<std::string> MadeFrom(const Job& job) {
    std::vector<std::string> files = FilesTranslated(job);
    FilesRead read;
    FilesReadByCompiler(job, read);
    for (const std::vector<std::string>& more : {read.headers, FilesReadByLinker(job), ToolFiles(job)})
        files.insert(files.end(), more.begin(), more.end());
    for (const std::string& flag : job.linkerFlags) {
        if (!flag.empty() && flag[0] != '-') files.push_back(FullPath(job, flag));
    }
    return files;
}
