// kv lsp: the language server for editors.
#include "kv/commands/commands.h"
#include "kv/diagnostics.h"

#if __has_include(<nlohmann/json.hpp>)
#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <iterator>

#include "base/utf8.h"
#include "kv/format/format.h"
#include "kv/manual_pages.h"
#include "kv/platform.h"
#include "lsp/services.h"

namespace {

// The pages whose entries are words of the language.
constexpr std::array<const char*, 8> pages = {"cpp",       "functions", "language",   "objects",
                                              "operators", "sequences", "statements", "timers"};

bool IsOfLanguage(const ManualEntry& entry) {
    return std::find(pages.begin(), pages.end(), entry.page) != pages.end();
}

bool IsWord(const std::string& name) {
    return std::all_of(name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) != 0; });
}

std::vector<ManualEntry> EntriesOfLanguage(std::vector<ManualEntry> entries) {
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                                 [](const ManualEntry& entry) { return !IsOfLanguage(entry); }),
                  entries.end());
    return entries;
}

}  // namespace

int LspCommand(const Options&) {
    const std::vector<ManualEntry> manual = ReadManual(ManualFolder());
    const std::vector<ManualEntry> entries = EntriesOfLanguage(manual);
    lsp::Services services;
    services.installation = TextOf(PathOf(OwnExecutable()).parent_path().parent_path());
    services.version = versionText;
    services.format = Formatted;
    services.explain = [&entries](const std::string& word) {
        const ManualEntry* entry = FindEntry(entries, word);
        return entry == nullptr ? std::string() : entry->text;
    };
    services.describe = [&manual](const std::string& module, const std::string& owner,
                                  const std::string& name) { return RowAbout(manual, module, owner, name); };
    for (const ManualEntry& entry : entries)
        std::copy_if(entry.names.begin(), entry.names.end(), std::back_inserter(services.words), IsWord);
    UseBinaryStreams();
    return lsp::Serve(services, stdin, stdout);
}

#else

int LspCommand(const Options&) {
    return Fail("this kv was built without JSON, which editors speak (Debian: nlohmann-json3-dev)");
}

#endif
