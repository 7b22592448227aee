#include "kv/build_folder.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "kv/hash.h"
#include "kv/platform.h"

namespace fs = std::filesystem;

namespace {

const char hiddenFolder[] = ".kvbuild";

bool CanWriteIn(const fs::path& folder) {
    std::error_code failed;
    fs::create_directories(folder, failed);
    return !failed && std::ofstream(folder / "lock", std::ios::app).good();
}

// The folder that a place has for a program; empty if there is none.
using Place = fs::path (*)(const fs::path& source, const std::string& variant);

// The name of a program's folder where those of all programs lie together.
std::string OwnName(const fs::path& source) { return source.stem().string() + "-" + HashOf(source.string()); }

fs::path BesideSource(const fs::path& source, const std::string& variant) {
    const fs::path hidden = source.parent_path() / hiddenFolder;
    const fs::path folder = hidden / source.filename() / variant;
    if (!CanWriteIn(folder)) return fs::path();
    const fs::path ignoreList = hidden / ".gitignore";
    std::error_code failed;
    if (!fs::exists(ignoreList, failed)) std::ofstream(ignoreList) << "*\n";
    return folder;
}

fs::path InCache(const fs::path& source, const std::string& variant) {
    const std::string cache = UserCacheFolder();
    if (cache.empty()) return fs::path();
    const fs::path folder = fs::path(cache) / "korvel" / "build" / OwnName(source) / variant;
    return CanWriteIn(folder) ? folder : fs::path();
}

fs::path InTemporaryFolder(const fs::path& source, const std::string& variant) {
    const fs::path temporary = UserTemporaryFolder();
    const fs::path folder = temporary / OwnName(source) / variant;
    return MakePrivateFolder(temporary.string()) && CanWriteIn(folder) ? folder : fs::path();
}

const Place places[] = {BesideSource, InCache, InTemporaryFolder};
const int placeCount = sizeof places / sizeof places[0];

}  // namespace

std::string ProgramName(const std::string& source) {
    std::string name = fs::path(source).filename().string();
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? name : name.substr(0, dot);
}

bool PrepareBuildFolder(const std::string& source, const std::string& variant,
                        const std::string& keepCppFolder, BuildFolder& build, std::string& problem) {
    fs::path folder;
    for (; build.place < placeCount; ++build.place) {
        folder = places[build.place](source, variant);
        if (!folder.empty()) break;
    }
    if (folder.empty()) {
        problem = "there is no place or no room to build in, neither beside " + source +
                  " nor in the user's cache or temporary folder";
        return false;
    }
    const fs::path cpp = keepCppFolder.empty() ? folder / "cpp" : fs::path(keepCppFolder);
    std::error_code failed;
    fs::create_directories(folder / "bin", failed);
    if (!failed) fs::create_directories(cpp, failed);
    if (failed) {
        problem = "cannot create the folder " + cpp.string() + ": " + failed.message();
        return false;
    }
    build.folder = folder.string();
    build.cppFolder = cpp.string();
    build.program = (folder / "bin" / (ProgramName(source) + executableSuffix)).string();
    build.object = (folder / "program.o").string();
    build.stamp = (folder / "stamp").string();
    build.objectStamp = (folder / "compiled").string();
    build.linkStamp = (folder / "linked").string();
    build.lock = (folder / "lock").string();
    build.started = (folder / "started").string();
    build.kvtOutput = (folder / "kvt-output.txt").string();
    build.kvtErrors = (folder / "kvt-errors.txt").string();
    build.compilerOutput = (folder / "compiler-output.txt").string();
    build.compilerErrors = (folder / "compiler-errors.txt").string();
    build.dependencies = (folder / "dependencies.d").string();
    build.linkDependencies = (folder / "libraries.d").string();
    return true;
}

bool BeginBuild(BuildFolder& build) {
    build.token = std::to_string(std::chrono::steady_clock::now().time_since_epoch().count());
    const std::size_t room = 1 << 20;  // what a small program takes
    if (!(std::ofstream(build.started, std::ios::binary) << std::string(room, ' ') << std::flush)) {
        std::error_code ignored;
        fs::remove(build.started, ignored);
        ++build.place;
        return false;
    }
    std::ofstream(build.started, std::ios::binary) << build.token;
    return true;
}

bool IsDisturbed(const BuildFolder& build) { return ReadWhole(build.started) != build.token; }

std::string ReadWhole(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}
