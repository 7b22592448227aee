#include "kv/build_folder.h"

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

// The folder of one program, in the first place that can be written to; empty if there is none.
fs::path FolderFor(const fs::path& source, const std::string& variant) {
    const fs::path hidden = source.parent_path() / hiddenFolder;
    fs::path beside = hidden / source.filename() / variant;
    if (CanWriteIn(beside)) {
        const fs::path ignoreList = hidden / ".gitignore";
        std::error_code failed;
        if (!fs::exists(ignoreList, failed)) std::ofstream(ignoreList) << "*\n";
        return beside;
    }
    const fs::path own = source.stem().string() + "-" + HashOf(source.string());
    const std::string cache = UserCacheFolder();
    if (!cache.empty()) {
        fs::path inCache = fs::path(cache) / "korvel" / "build" / own / variant;
        if (CanWriteIn(inCache)) return inCache;
    }
    const fs::path temporary = UserTemporaryFolder();
    if (MakePrivateFolder(temporary.string()) && CanWriteIn(temporary / own / variant)) {
        return temporary / own / variant;
    }
    return fs::path();
}

}  // namespace

std::string ProgramName(const std::string& source) {
    std::string name = fs::path(source).filename().string();
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? name : name.substr(0, dot);
}

bool PrepareBuildFolder(const std::string& source, const std::string& variant,
                        const std::string& keepCppFolder, BuildFolder& build, std::string& problem) {
    const fs::path folder = FolderFor(source, variant);
    if (folder.empty()) {
        problem = "cannot write a build folder, neither beside " + source + " nor for the user";
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
    build.stamp = (folder / "stamp").string();
    build.lock = (folder / "lock").string();
    build.started = (folder / "started").string();
    build.kvtOutput = (folder / "kvt-output.txt").string();
    build.kvtErrors = (folder / "kvt-errors.txt").string();
    build.compilerOutput = (folder / "compiler-output.txt").string();
    build.compilerErrors = (folder / "compiler-errors.txt").string();
    build.dependencies = (folder / "dependencies.d").string();
    return true;
}

std::string ReadWhole(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}
