#include "kv/write_file.h"

#include <chrono>
#include <fstream>

#include "base/utf8.h"
#include "kv/diagnostics.h"
#include "kv/platform.h"

namespace fs = std::filesystem;

namespace {

bool MoveOver(const fs::path& unfinished, const fs::path& path, bool isWritten, std::string& problem) {
    std::error_code failed;
    if (isWritten) fs::rename(unfinished, path, failed);
    if (isWritten && !failed) return true;
    if (failed) problem = failed.message();
    fs::remove(unfinished, failed);
    return false;
}

}  // namespace

bool WriteOver(const fs::path& path, const std::string& text) {
    fs::path unfinished = path;
    unfinished += ".new";
    std::error_code ignored;
    fs::remove(unfinished, ignored);
    std::ofstream stream(unfinished, std::ios::binary);
    stream << text;
    stream.close();
    std::string problem;
    return MoveOver(unfinished, path, stream.good(), problem);
}

bool CopyOver(const fs::path& from, const fs::path& to) {
    // In a folder that many can write to, the name must be a new one.
    const std::string moment = std::to_string(std::chrono::steady_clock::now().time_since_epoch().count());
    const fs::path unfinished =
        to.parent_path() / PathOf("." + TextOf(to.filename()) + "." + moment + ".new");
    std::string problem;
    const bool isWritten = CopyToNewFile(TextOf(from), TextOf(unfinished), problem);
    if (MoveOver(unfinished, to, isWritten, problem)) return true;
    ShowProblem("cannot write " + TextOf(to) + ": " + problem);
    return false;
}
