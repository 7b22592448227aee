#include "kv/installed_record.h"

#include <filesystem>
#include <sstream>

#include "base/utf8.h"
#include "kv/build_folder.h"
#include "kv/hash.h"
#include "kv/platform.h"
#include "kv/private_folder.h"
#include "kv/write_file.h"

namespace fs = std::filesystem;

namespace {

// One for all programs of the user, as those of one folder share libraries; empty without a cache folder.
std::string RecordFile() {
    const std::string folder = PrivateFolder(CacheFolder(), {});
    return folder.empty() ? "" : TextOf(PathOf(folder) / "installed");
}

std::string LineOf(const std::string& path, const std::string& content) {
    return HashOf(ReadWhole(content)) + "|" + path;
}

bool HasLine(const std::string& text, const std::string& wanted) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line == wanted) return true;
    }
    return false;
}

}  // namespace

bool IsInstalledByKv(const std::string& path) {
    const std::string record = RecordFile();
    return !record.empty() && HasLine(ReadWhole(record), LineOf(path, path));
}

void RecordInstalled(const std::string& path, const std::string& content) {
    const std::string record = RecordFile();
    if (record.empty()) return;
    const FileLock lock(record + ".lock", {});
    const std::string text = ReadWhole(record);
    const std::string line = LineOf(path, content);
    if (!HasLine(text, line)) WriteOver(PathOf(record), text + line + "\n");
}
