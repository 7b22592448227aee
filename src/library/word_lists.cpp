#include "library/word_lists.h"

#include <functional>
#include <string>

#include "base/report.h"
#include "base/settings.h"
#include "base/source_reader.h"
#include "lexer/lexer.h"
#include "symbols/identifiers.h"

namespace {

std::string ReadOrFail(const std::string& path) {
    std::string text;
    if (!ReadFile(path, text)) ReportFatal("Cannot open " + path + "!");
    return text;
}

// Calls take for every line, its "\n" removed.
void ForEachLine(const std::string& text, const std::function<void(std::string)>& take) {
    for (std::size_t start = 0; start < text.size();) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        take(text.substr(start, end - start));
        start = end + 1;
    }
}

void LoadKeywords() {
    ForEachLine(ReadOrFail(InstallationPath("config/keywords.txt")), [](const std::string& line) {
        if (line.empty()) return;
        if (wordLists.keywordList.size() == static_cast<std::size_t>(keywordAmount)) {
            ReportFatal("Too many keywords in config/keywords.txt - raise keywordAmount in declarations.h");
        }
        wordLists.spellings.push_back(line.substr(0, line.find(':')));
        wordLists.keywordList.push_back(Lower(wordLists.spellings.back()));
    });
    // The last slot is loaded but reserves nothing.
    wordLists.keywordList.resize(keywordAmount);
    wordLists.reservedKeywords.insert(wordLists.keywordList.begin(), wordLists.keywordList.end() - 1);
}

void LoadCppWords() {
    ForEachLine(ReadOrFail(InstallationPath("config/cpp.txt")), [](std::string line) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty()) return;
        wordLists.cppWordList.push_back(line);
        wordLists.reservedCppWords.insert(line);
    });
}

}  // namespace

void LoadWordLists() {
    wordLists = {};
    LoadKeywords();
    LoadCppWords();
}
