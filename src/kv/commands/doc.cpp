// kv doc: the manual in the terminal.
#include <cstdio>
#include <string>

#include "kv/commands/commands.h"
#include "kv/diagnostics.h"
#include "kv/manual_pages.h"
#include "library/korvel.h"

namespace {

const std::size_t width = 78;

// "Statements" and the words of its entries, in lines of some width.
std::string Contents(const std::vector<ManualEntry>& entries) {
    std::string text, line, title;
    for (const ManualEntry& entry : entries) {
        if (entry.title != title) {
            text += line + (title.empty() ? "" : "\n\n") + entry.title + "\n";
            title = entry.title;
            line = "   ";
        }
        for (const std::string& name : entry.names) {
            if (line.size() + name.size() >= width) {
                text += line + "\n";
                line = "   ";
            }
            line += " " + name;
        }
    }
    return text + line + "\n\nkv doc WORD shows the entry of a word.\n";
}

// Where else to look for a word without an entry.
std::string NearestTo(const std::vector<ManualEntry>& entries, const std::string& word) {
    const std::string advice = korvel::AdviceOnWord(word);
    if (!advice.empty()) return ". " + advice;
    std::string text;
    for (const std::string& name : SimilarNames(entries, word))
        text += (text.empty() ? "; did you mean " : " or ") + name;
    return text.empty() ? " (kv doc lists all entries)" : text + "?";
}

}  // namespace

int DocCommand(const Options& options) {
    const std::vector<ManualEntry> entries = ReadManual(ManualFolder());
    if (entries.empty()) return Fail(NoManual());
    if (options.names.empty()) {
        std::fputs(Contents(entries).c_str(), stdout);
        return 0;
    }
    const std::string& word = options.names[0];
    if (const ManualEntry* entry = FindEntry(entries, word)) {
        std::fputs(PlainText(entry->text).c_str(), stdout);
        return 0;
    }
    const std::string page = PageAbout(word);
    if (!page.empty()) {
        std::fputs(PlainText(page).c_str(), stdout);
        return 0;
    }
    return Fail("the manual has no entry for \"" + word + "\"" + NearestTo(entries, word));
}
