#include "outputs/atomic_file.h"

#include <filesystem>

#include "base/files.h"
#include "base/source_reader.h"
#include "base/utf8.h"

namespace fs = std::filesystem;

bool ReplaceFile(const std::string& path, const std::string& text) {
    return ReplaceFile(path, text, path + ".new");
}

bool ReplaceFile(const std::string& path, const std::string& text, const std::string& passing) {
    std::string before;
    if (FileSize(path) == text.size() && ReadFile(path, before) && before == text) return true;
    std::error_code failed;
    if (fs::exists(PathOf(path), failed) && !fs::is_regular_file(PathOf(path), failed)) return false;
    if (!WriteContents(passing, text)) return false;
    fs::rename(PathOf(passing), PathOf(path), failed);
    if (!failed) return true;
    fs::remove(PathOf(passing), failed);
    return false;
}

bool FileExists(const std::string& path) {
    std::error_code failed;
    return fs::exists(PathOf(path), failed);
}

std::uintmax_t FileSize(const std::string& path) {
    std::error_code failed;
    const std::uintmax_t size = fs::file_size(PathOf(path), failed);
    return failed ? 0 : size;
}
