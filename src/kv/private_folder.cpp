#include "kv/private_folder.h"

#include <filesystem>

#include "kv/platform.h"

namespace fs = std::filesystem;

std::string PrivateFolder(const std::string& top, const std::vector<std::string>& below) {
    if (top.empty()) return "";
    std::error_code ignored;
    fs::path folder = fs::path(top).lexically_normal();
    fs::create_directories(folder.parent_path(), ignored);
    if (!MakePrivateFolder(folder.string())) return "";
    for (const std::string& name : below) {
        folder /= name;
        if (!MakePrivateFolder(folder.string())) return "";
    }
    return CanWriteIn(folder.string()) ? folder.string() : "";
}

std::string CacheFolder() {
    const std::string cache = UserCacheFolder();
    return cache.empty() ? "" : (fs::path(cache) / "korvel").lexically_normal().string();
}
