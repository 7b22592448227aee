// kv explain: what a warning means.
#include <algorithm>
#include <cstdio>

#include "kv/commands/commands.h"
#include "kv/diagnostics.h"
#include "kv/manual_pages.h"

int ExplainCommand(const Options& options) {
    std::vector<ManualEntry> entries = ReadManual(ManualFolder());
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                                 [](const ManualEntry& entry) { return entry.page != "warnings"; }),
                  entries.end());
    if (entries.empty()) {
        ShowProblem("the installation is not whole: there is no manual in " + ManualFolder());
        return 1;
    }
    if (options.names.empty()) {
        for (const ManualEntry& entry : entries) std::printf("%s\n", entry.names[0].c_str());
        return 0;
    }
    const std::string& name = options.names[0];
    if (const ManualEntry* entry = FindEntry(entries, name)) {
        std::fputs(PlainText(entry->text).c_str(), stdout);
        return 0;
    }
    const std::vector<std::string> similar = SimilarNames(entries, name);
    ShowProblem("there is no warning called \"" + name + "\"" +
                (similar.empty() ? " (kv explain lists all of them)" : "; did you mean " + similar[0] + "?"));
    return 1;
}
