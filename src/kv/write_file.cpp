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

// In a folder that many can write to, the name must be a new one.
fs::path NewNameBeside(const fs::path& path) {
    const std::string moment = std::to_string(std::chrono::steady_clock::now().time_since_epoch().count());
    return path.parent_path() / PathOf("." + TextOf(path.filename()) + "." + moment + ".new");
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
    const fs::path unfinished = NewNameBeside(to);
    std::string problem;
    const bool isWritten = CopyToNewFile(TextOf(from), TextOf(unfinished), problem);
    if (MoveOver(unfinished, to, isWritten, problem)) return true;
    return Refuse("cannot write " + TextOf(to) + ": " + problem);
}

bool RewriteFile(const fs::path& path, const std::string& text) {
    std::error_code failed;
    const fs::path file = fs::canonical(path, failed);
    const fs::path unfinished = NewNameBeside(file);
    std::string problem;
    // A copy has the rights of the file.
    bool isWritten = !failed && CopyToNewFile(TextOf(file), TextOf(unfinished), problem);
    if (isWritten) {
        std::ofstream stream(unfinished, std::ios::binary | std::ios::trunc);
        stream << text;
        stream.close();
        isWritten = stream.good();
    }
    if (MoveOver(unfinished, file, isWritten, problem)) return true;
    return Refuse("cannot write " + TextOf(path) + (problem.empty() ? "" : ": " + problem));
}
