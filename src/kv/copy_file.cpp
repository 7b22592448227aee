#include "kv/copy_file.h"

#include "kv/diagnostics.h"

namespace fs = std::filesystem;

bool CopyOver(const fs::path& from, const fs::path& to) {
    std::error_code failed;
    const fs::path unfinished = to.parent_path() / ("." + to.filename().string() + ".new");
    fs::copy_file(from, unfinished, fs::copy_options::overwrite_existing, failed);
    if (!failed) fs::rename(unfinished, to, failed);
    if (!failed) return true;
    std::error_code ignored;
    fs::remove(unfinished, ignored);
    ShowProblem("cannot write " + to.string() + ": " + failed.message());
    return false;
}
