// kv explain: what a warning means.
#include <algorithm>
#include <cstdio>

#include "kv/commands/commands.h"
#include "kv/diagnostics.h"
#include "kv/manual_pages.h"

static constexpr int nameWidth = 16;

int ExplainCommand(const Options& options) {
    std::vector<ManualEntry> entries = ReadManual(ManualFolder());
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                                 [](const ManualEntry& entry) { return entry.page != "warnings"; }),
                  entries.end());
    if (entries.empty()) return Fail(NoManual());
    if (options.names.empty()) {
        for (const ManualEntry& entry : entries)
            std::printf("%-*s %s\n", nameWidth, entry.names[0].c_str(), FirstSentence(entry).c_str());
        return 0;
    }
    const std::string& name = options.names[0];
    if (const ManualEntry* entry = FindEntry(entries, name)) {
        std::fputs(PlainText(entry->text).c_str(), stdout);
        return 0;
    }
    const std::vector<std::string> similar = SimilarNames(entries, name);
    return Fail("there is no warning called \"" + name + "\"" +
                (similar.empty() ? " (kv explain lists all of them)" : "; did you mean " + similar[0] + "?"));
}
