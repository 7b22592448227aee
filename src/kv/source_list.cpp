#include "kv/source_list.h"

#include <algorithm>
#include <filesystem>

#include "base/text.h"
#include "base/utf8.h"

namespace fs = std::filesystem;

std::vector<std::string> SourcesOf(const std::string& name, const std::string& ending) {
    std::error_code failed;
    if (!fs::is_directory(PathOf(name), failed)) return {name};
    std::vector<std::string> sources;
    fs::recursive_directory_iterator entry(PathOf(name), failed);
    for (; !failed && entry != fs::recursive_directory_iterator(); entry.increment(failed)) {
        const std::string file = TextOf(entry->path().filename());
        if (file[0] == '.' && entry->is_directory(failed)) entry.disable_recursion_pending();
        if (EndsWith(file, ending) && entry->is_regular_file(failed))
            sources.push_back(TextOf(entry->path().lexically_normal()));
    }
    std::sort(sources.begin(), sources.end());
    return sources;
}
