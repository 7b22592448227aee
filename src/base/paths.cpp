#include "base/paths.h"

std::string StripExtension(const std::string& path) { return path.substr(0, path.rfind('.')); }

std::string StripFolder(const std::string& path) {
    const std::size_t slash = path.find_last_of("/\\");
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.find_last_of("/\\");
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

std::string SourceFolderOf(const std::string& mainSource) {
    return mainSource.find_first_of("/\\") == std::string::npos ? "." : FolderOf(mainSource);
}
