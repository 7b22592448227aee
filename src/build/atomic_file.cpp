#include "build/atomic_file.h"

#include <cstdio>
#include <filesystem>

#include "lexer/source_reader.h"

namespace fs = std::filesystem;

bool ReplaceFile(const std::string& path, const std::string& text) {
    std::string before;
    if (FileSize(path) == text.size() && ReadFile(path, before) && before == text) return true;
    const std::string passing = path + ".new";
    std::FILE* file = std::fopen(passing.c_str(), "wb");
    if (!file) return false;
    bool good = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    good = std::fclose(file) == 0 && good;
    std::error_code failed;
    if (good) fs::rename(passing, path, failed);
    if (good && !failed) return true;
    fs::remove(passing, failed);
    return false;
}

bool FileExists(const std::string& path) {
    std::error_code failed;
    return fs::exists(path, failed);
}

std::uintmax_t FileSize(const std::string& path) {
    std::error_code failed;
    const std::uintmax_t size = fs::file_size(path, failed);
    return failed ? 0 : size;
}
