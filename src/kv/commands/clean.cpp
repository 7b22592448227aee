// kv clean: removes what kv has made and can make again.
#include <cstdio>
#include <filesystem>
#include <string>

#include "base/utf8.h"
#include "kv/build_folder.h"
#include "kv/commands/commands.h"
#include "kv/diagnostics.h"
#include "kv/job.h"

namespace fs = std::filesystem;

namespace {

// Removes a folder that is no link, with all that is in it.
bool RemoveFolder(const std::string& folder) {
    std::error_code failed;
    if (!fs::is_directory(fs::symlink_status(PathOf(folder), failed))) return true;
    const auto removed = fs::remove_all(PathOf(folder), failed);
    if (failed) {
        return Refuse("cannot remove " + folder + ": " + failed.message());
    }
    std::printf("removed %s (%llu files and folders)\n", folder.c_str(),
                static_cast<unsigned long long>(removed));
    return true;
}

// A folder stands for all programs in it.
bool Clean(const std::string& name) {
    std::error_code failed;
    const std::string here = TextOf(fs::current_path(failed));
    const fs::path folder = (PathOf(here) / PathOf(name)).lexically_normal();
    if (fs::is_directory(folder, failed) && !fs::is_regular_file(PathOf(TextOf(folder) + ".kvl"), failed))
        return RemoveFolder(HiddenFolderOf(folder));
    std::string source;
    if (!FindSource(name, here, source)) return false;
    bool good = true;
    for (const std::string& place : BuildFoldersOf(source)) good = RemoveFolder(place) && good;
    return good;
}

}  // namespace

int CleanCommand(const Options& options) {
    if (options.names.empty()) return Clean(".") ? 0 : failure;
    bool good = true;
    for (const std::string& name : options.names) good = Clean(name) && good;
    return good ? 0 : failure;
}
