#include "kv/clash_place.h"

#include "driver/utf8.h"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <set>
#include <vector>

namespace {

struct KindRow {
    const char* start;    // of the message
    const char* keyword;  // of the declaration
};

const KindRow kindRows[] = {{"Field '", "field"}, {"Global variable '", "global"}, {"Const '", "const"}};

bool IsNameCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

bool HasWord(const std::string& line, const std::string& word) {
    for (std::size_t at = line.find(word); at != std::string::npos; at = line.find(word, at + 1)) {
        const std::size_t end = at + word.size();
        if ((at == 0 || !IsNameCharacter(line[at - 1])) &&
            (end == line.size() || !IsNameCharacter(line[end]))) {
            return true;
        }
    }
    return false;
}

std::string Keyword(const std::string& line) {
    std::string word;
    for (std::size_t at = line.find_first_not_of(" \t"); at < line.size() && IsNameCharacter(line[at]);
         ++at) {
        word += static_cast<char>(std::tolower(static_cast<unsigned char>(line[at])));
    }
    return word;
}

std::string Quoted(const std::string& line, char quote) {
    const std::size_t start = line.find(quote);
    const std::size_t end = start == std::string::npos ? start : line.find(quote, start + 1);
    return end == std::string::npos ? "" : line.substr(start + 1, end - start - 1);
}

}  // namespace

void FindClash(const std::string& mainSource, Diagnostic& diagnostic) {
    diagnostic.file = mainSource;
    std::string keyword;
    for (const KindRow& row : kindRows) {
        if (diagnostic.message.compare(0, std::string(row.start).size(), row.start) == 0)
            keyword = row.keyword;
    }
    const std::string name = Quoted(diagnostic.message, '\'');
    if (keyword.empty() || name.empty()) return;

    const std::filesystem::path folder = PathOf(mainSource).parent_path();
    std::set<std::string> seen = {mainSource};
    std::vector<std::string> files = {mainSource};
    for (std::size_t at = 0; at < files.size(); ++at) {
        std::ifstream stream(PathOf(files[at]), std::ios::binary);
        int number = 0;
        for (std::string line; std::getline(stream, line);) {
            ++number;
            const std::string word = Keyword(line);
            if (word == keyword && HasWord(line, name)) {
                diagnostic.file = files[at];
                diagnostic.line = number;
                return;
            }
            if (word == "include") {
                const std::string included = TextOf(folder / PathOf(Quoted(line, '"')));
                if (seen.insert(included).second) files.push_back(included);
            }
        }
    }
}
