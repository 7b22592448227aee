#include "base/places.h"

#include <filesystem>

#include "base/utf8.h"

namespace fs = std::filesystem;

std::string Resolved(const std::string& path) {
    std::error_code failed;
    const fs::path full = fs::absolute(PathOf(path), failed);
    std::string real = GenericTextOf(fs::weakly_canonical(full, failed));
    if (failed) return "?";
    if (!real.empty() && real.back() == '/') real.pop_back();
    return real;
}

std::string PlaceOf(const std::string& path) {
    const fs::path parts = PathOf(path);
    const std::string folder = TextOf(parts.parent_path());
    return Resolved(folder.empty() ? "." : folder) + "/" + TextOf(parts.filename());
}

bool LeadsOutOf(const std::string& top, const std::string& folder) {
    const fs::path way = PathOf(Resolved(folder) + "/").lexically_relative(PathOf(Resolved(top) + "/"));
    return way.empty() || *way.begin() == "..";
}
