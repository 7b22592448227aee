#include "kv/build_folder.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <vector>

#include "base/paths.h"
#include "base/utf8.h"
#include "kv/hash.h"
#include "kv/platform.h"
#include "kv/private_folder.h"
#include "kv/write_file.h"

namespace fs = std::filesystem;

namespace {

const char hiddenFolder[] = ".kvbuild";
const char lockName[] = "lock";

// The folder that a place has for a program; empty if there is none.
using Place = std::string (*)(const fs::path& source, const std::string& variant);

// The name of a program's folder where those of all programs lie together.
std::string OwnName(const fs::path& source) { return TextOf(source.stem()) + "-" + HashOf(TextOf(source)); }

std::string BesideSource(const fs::path& source, const std::string& variant) {
    const fs::path hidden = source.parent_path() / hiddenFolder;
    const std::string folder = PrivateFolder(TextOf(hidden), {TextOf(source.filename()), variant});
    if (folder.empty()) return "";
    const fs::path ignoreList = hidden / ".gitignore";
    std::error_code failed;
    if (!fs::exists(ignoreList, failed)) WriteOver(ignoreList, "*\n");
    return folder;
}

std::string InCache(const fs::path& source, const std::string& variant) {
    return PrivateFolder(CacheFolder(), {"build", OwnName(source), variant});
}

std::string InTemporaryFolder(const fs::path& source, const std::string& variant) {
    return PrivateFolder(UserTemporaryFolder(), {OwnName(source), variant});
}

const Place places[] = {BesideSource, InCache, InTemporaryFolder};
const int placeCount = sizeof places / sizeof places[0];

// The folders for the C++, one below the other: as many as a source's Includes can climb (Include "../x.kvl"), so that
// their C++ does not come to lie where another way of building, or another program, has its own.
std::vector<std::string> FoldersForCpp(const fs::path& source) {
    std::error_code failed;
    const fs::path folder = source.parent_path();
    const fs::path resolved = fs::canonical(folder, failed);
    const auto depth = std::max(std::distance(folder.begin(), folder.end()),
                                std::distance(resolved.begin(), resolved.end()));
    std::vector<std::string> names = {"cpp"};
    names.insert(names.end(), static_cast<std::size_t>(depth), "_");
    return names;
}

// Has the C++ generated in a folder that the user has named.
bool UseFolderOfUser(const std::string& folder, BuildFolder& build, std::string& problem) {
    std::error_code failed;
    fs::create_directories(PathOf(folder), failed);
    if (failed) {
        problem = "cannot create the folder " + folder + ": " + failed.message();
        return false;
    }
    if (!BelongsToUser(folder)) {
        problem = "the folder " + folder + " belongs to somebody else; --keep-cpp takes one of your own";
        return false;
    }
    build.cppFolder = folder;
    build.cppLock = TextOf(PathOf(folder) / ".kv.lock");
    return true;
}

}  // namespace

std::string ProgramName(const std::string& source) {
    return StripExtension(StripFolder(source));  // as the compiler names what it makes
}

bool PrepareBuildFolder(const std::string& source, const std::string& variant,
                        const std::string& keepCppFolder, const std::string& programSuffix,
                        BuildFolder& build, std::string& problem) {
    fs::path folder;
    for (; build.place < placeCount; ++build.place) {
        folder = PathOf(places[build.place](PathOf(source), variant));
        if (folder.empty()) continue;
        build.cppFolder = PrivateFolder(TextOf(folder), FoldersForCpp(PathOf(source)));
        if (!build.cppFolder.empty() && !PrivateFolder(TextOf(folder), {"bin"}).empty()) break;
    }
    if (build.place == placeCount) {
        problem = "there is no place or no room to build in, neither beside " + source +
                  " nor in the user's cache or temporary folder";
        return false;
    }
    if (!keepCppFolder.empty() && !UseFolderOfUser(keepCppFolder, build, problem)) return false;
    build.folder = TextOf(folder);
    build.program = TextOf(folder / "bin" / PathOf(ProgramName(source) + programSuffix));
    build.object = TextOf(folder / "program.o");
    build.stamp = TextOf(folder / "stamp");
    build.objectStamp = TextOf(folder / "compiled");
    build.linkStamp = TextOf(folder / "linked");
    build.lock = TextOf(folder / lockName);
    build.started = TextOf(folder / "started");
    build.translation = TextOf(folder / "translation");
    build.translatorOutput = TextOf(folder / "translator-output.txt");
    build.translatorErrors = TextOf(folder / "translator-errors.txt");
    build.compilerOutput = TextOf(folder / "compiler-output.txt");
    build.compilerErrors = TextOf(folder / "compiler-errors.txt");
    build.dependencies = TextOf(folder / "dependencies.d");
    build.linkDependencies = TextOf(folder / "libraries.d");
    return true;
}

std::vector<std::string> BuildFoldersOf(const std::string& source) {
    const fs::path path = PathOf(source), own = PathOf(OwnName(path));
    std::vector<std::string> folders = {TextOf(path.parent_path() / hiddenFolder / path.filename()),
                                        TextOf(PathOf(UserTemporaryFolder()) / own)};
    if (!CacheFolder().empty()) folders.push_back(TextOf(PathOf(CacheFolder()) / "build" / own));
    return folders;
}

std::string HiddenFolderOf(const fs::path& folder) { return TextOf(folder / hiddenFolder); }

bool BeginBuild(BuildFolder& build) {
    build.token = std::to_string(std::chrono::steady_clock::now().time_since_epoch().count());
    const std::size_t room = 1 << 20;  // what a small program takes
    std::error_code ignored;
    fs::remove(PathOf(build.started), ignored);
    if (!(std::ofstream(PathOf(build.started), std::ios::binary) << std::string(room, ' ') << std::flush)) {
        fs::remove(PathOf(build.started), ignored);
        if (fs::exists(PathOf(build.folder), ignored)) ++build.place;
        return false;
    }
    std::ofstream(PathOf(build.started), std::ios::binary) << build.token;
    return true;
}

bool GiveUpPlace(BuildFolder& build) {
    const std::uintmax_t plenty = 32 << 20;
    std::error_code failed;
    const fs::space_info space = fs::space(PathOf(build.folder), failed);
    const bool hasRoom = failed || (space.available > plenty && !IsShortOfFiles(build.folder));
    if (hasRoom || build.place + 1 == placeCount) return false;
    ++build.place;
    fs::remove(PathOf(build.started), failed);
    return true;
}

void GiveUpLock(BuildFolder& build) {
    std::error_code failed;
    const fs::file_status status = fs::symlink_status(PathOf(build.lock), failed);
    const bool isInTheWay = fs::exists(status) && !fs::is_regular_file(status);
    if (isInTheWay && fs::remove(PathOf(build.lock), failed)) return;
    if (fs::exists(PathOf(build.folder), failed)) ++build.place;
}

bool IsDisturbed(const BuildFolder& build) { return ReadWhole(build.started) != build.token; }

std::string ReadWhole(const std::string& path) {
    std::ifstream stream(PathOf(path), std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}
