#include "kv/private_folder.h"

#include <filesystem>

#include "base/utf8.h"
#include "kv/platform.h"

namespace fs = std::filesystem;

std::string PrivateFolder(const std::string& top, const std::vector<std::string>& below) {
    if (top.empty()) return "";
    std::error_code ignored;
    fs::path folder = PathOf(top).lexically_normal();
    fs::create_directories(folder.parent_path(), ignored);
    if (!MakePrivateFolder(TextOf(folder))) return "";
    for (const std::string& name : below) {
        folder /= PathOf(name);
        if (!MakePrivateFolder(TextOf(folder))) return "";
    }
    return CanWriteIn(TextOf(folder)) ? TextOf(folder) : "";
}

std::string CacheFolder() {
    const std::string cache = UserCacheFolder();
    return cache.empty() ? "" : TextOf((PathOf(cache) / "korvel").lexically_normal());
}
