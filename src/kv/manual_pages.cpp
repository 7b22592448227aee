#include "kv/manual_pages.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/edit_distance.h"
#include "base/source_reader.h"
#include "base/text.h"
#include "base/token_text.h"
#include "base/utf8.h"
#include "kv/platform.h"

namespace fs = std::filesystem;

namespace {

const std::size_t width = 78;
const std::string entryMark = "### ", fence = "```";
const std::string wordsMark = "<!-- words: ", wordsEnd = " -->";

// Without dashes in front, in lower case; "std/text.kvl" is text.
std::string Key(const std::string& word) {
    const std::string modules = "std/", ending = ".kvl";
    const std::size_t from = word.find_first_not_of('-');
    std::string key = from == std::string::npos ? word : word.substr(from);
    if (StartsWith(key, modules)) key.erase(0, modules.size());
    if (EndsWith(key, ending)) key.erase(key.size() - ending.size());
    std::transform(key.begin(), key.end(), key.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return key;
}

// "`=`, `<>`" names = and <>.
std::vector<std::string> NamesIn(const std::string& heading) {
    std::vector<std::string> names;
    std::istringstream text(heading);
    for (std::string name; std::getline(text, name, ',');) {
        name.erase(std::remove_if(name.begin(), name.end(), [](char c) { return c == '`' || c == ' '; }),
                   name.end());
        names.push_back(name);
    }
    return names;
}

// "| `Left(text, count)`, `Beep` | ..." names Left and Beep, a paragraph that begins with "`WaitKey()` waits" WaitKey.
void AddFunctionsOfLine(const std::string& line, std::vector<std::string>& names) {
    const bool isRow = StartsWith(line, "|");
    std::istringstream pieces(isRow ? line.substr(0, line.find('|', 1)) : line);
    bool code = false;
    for (std::string piece; std::getline(pieces, piece, '`'); code = !code) {
        const std::size_t end = piece.find_first_of(" (");
        const bool isCall = end != std::string::npos && piece[end] == '(';
        if (code && !piece.empty() && IsLetterByte(piece[0]) && (isRow || isCall))
            names.push_back(piece.substr(0, end));
    }
}

// "| `Left(text, count)` | the first characters |" ends in "the first characters".
std::string LastCell(const std::string& row) {
    const std::size_t end = row.rfind(" |");
    if (end == std::string::npos || end == 0) return {};
    const std::size_t begin = row.rfind("| ", end - 1);
    return begin == std::string::npos ? std::string() : row.substr(begin + 2, end - begin - 2);
}

void ReadPage(const fs::path& path, bool ofModule, std::vector<ManualEntry>& entries) {
    std::ifstream page(path, std::ios::binary);
    std::string title;
    bool inEntry = false, inCode = false;
    for (std::string line; std::getline(page, line);) {
        if (StartsWith(line, fence)) inCode = !inCode;
        if (!inCode && StartsWith(line, "#")) {
            if (title.empty()) title = line.substr(line.find_first_not_of("# "));
            inEntry = StartsWith(line, entryMark) || (ofModule && !StartsWith(line, "###"));
            if (inEntry) entries.push_back({TextOf(path.stem()), title, {}, ""});
            if (inEntry && !ofModule) entries.back().names = NamesIn(line.substr(entryMark.size()));
            if (ofModule && StartsWith(line, "# ")) entries.back().names.push_back(TextOf(path.stem()));
        }
        if (!inEntry) continue;
        if (ofModule && !inCode && (StartsWith(line, "|") || StartsWith(line, "`")))
            AddFunctionsOfLine(line, entries.back().names);
        if (!inCode && StartsWith(line, wordsMark)) {
            for (std::string& name :
                 NamesIn(line.substr(wordsMark.size(), line.find(wordsEnd) - wordsMark.size())))
                entries.back().names.push_back(std::move(name));
            continue;
        }
        entries.back().text += line + "\n";
    }
}

std::vector<fs::path> PagesIn(const fs::path& folder) {
    std::vector<fs::path> pages;
    std::error_code missing;
    for (const auto& file : fs::directory_iterator(folder, missing)) {
        if (file.path().extension() == ".md") pages.push_back(file.path());
    }
    std::sort(pages.begin(), pages.end());
    return pages;
}

// What a block of code is, from the word behind its fence.
std::string Lead(const std::string& kind) {
    if (kind == "output") return "prints\n\n";
    if (kind == "input") return "typed in\n\n";
    if (kind == "failure") return "fails with\n\n";
    if (kind == "error") return "is refused with\n\n";
    if (kind == "warning") return "is warned of\n\n";
    return "";
}

// "[the text](of a link)" is its text.
std::string WithoutLinks(const std::string& line) {
    std::string text;
    std::size_t at = 0;
    for (std::size_t middle; (middle = line.find("](", at)) != std::string::npos;) {
        const std::size_t open = line.rfind('[', middle), close = line.find(')', middle);
        if (open == std::string::npos || open < at || close == std::string::npos) break;
        text += line.substr(at, open - at) + line.substr(open + 1, middle - open - 1);
        at = close + 1;
    }
    return text + line.substr(at);
}

std::string WithoutStrong(std::string line) {
    for (std::size_t at; (at = line.find("**")) != std::string::npos;) line.erase(at, 2);
    return line;
}

// A line of text without its marks. What stands between backticks has none.
std::string WithoutMarks(const std::string& line) {
    std::string text;
    bool code = false;
    std::istringstream pieces(line);
    for (std::string piece; std::getline(pieces, piece, '`'); code = !code)
        text += code ? piece : WithoutStrong(WithoutLinks(piece));
    return text;
}

// A paragraph or item of a list, in lines of some width.
std::string Wrapped(const std::string& paragraph) {
    const std::string indent = StartsWith(paragraph, "- ") ? "  " : "";
    std::string text, line;
    std::istringstream words(paragraph);
    for (std::string word; words >> word;) {
        if (!line.empty() && line.size() + 1 + word.size() > width) {
            text += line + "\n";
            line = indent + word;
        } else {
            line += (line.empty() ? "" : " ") + word;
        }
    }
    return line.empty() ? "" : text + line + "\n";
}

bool IsProse(const std::string& line) {
    return !line.empty() && line[0] != '#' && line[0] != '|' && !StartsWith(line, fence) &&
           !StartsWith(line, "    ");
}

// A heading, a row of a table or a line of code.
std::string PlainLine(const std::string& line, bool inCode) {
    if (line.empty()) return "\n";
    if (inCode) return "    " + line + "\n";
    if (line[0] != '#') return (line[0] == '|' ? WithoutMarks(line) : line) + "\n";
    const std::string heading = WithoutMarks(line.substr(line.find_first_not_of("# ")));
    return heading + "\n" + std::string(heading.size(), '=') + "\n";
}

}  // namespace

std::string PageAbout(const std::string& word) {
    const fs::path page = PathOf(ManualFolder()) / PathOf(Key(word) + ".md");
    std::error_code failed;
    const bool isPage = word.find_first_of("/\\.") == std::string::npos && fs::is_regular_file(page, failed);
    std::string text;
    return isPage && ReadFile(TextOf(page), text) ? text : "";
}

std::string FirstSentence(const ManualEntry& entry) {
    const std::size_t text = entry.text.find("\n\n");
    if (text == std::string::npos) return {};
    std::string paragraph = entry.text.substr(text + 2, entry.text.find("\n\n", text + 2) - text - 2);
    std::replace(paragraph.begin(), paragraph.end(), '\n', ' ');
    return WithoutMarks(paragraph.substr(0, paragraph.find(". ")));
}

std::string ManualFolder() {
    return TextOf(PathOf(OwnExecutable()).parent_path().parent_path() / "docs" / "manual");
}

std::string NoManual() { return "the installation is not whole: there is no manual in " + ManualFolder(); }

std::vector<ManualEntry> ReadManual(const std::string& folder) {
    std::vector<ManualEntry> entries;
    for (const fs::path& page : PagesIn(PathOf(folder))) ReadPage(page, false, entries);
    for (const fs::path& page : PagesIn(PathOf(folder) / "library")) ReadPage(page, true, entries);
    return entries;
}

const ManualEntry* FindEntry(const std::vector<ManualEntry>& entries, const std::string& word) {
    const ManualEntry* found = nullptr;
    for (const ManualEntry& entry : entries) {
        for (const std::string& name : entry.names) {
            if (name == word) return &entry;
            if (found == nullptr && Key(name) == Key(word)) found = &entry;
        }
    }
    return found;
}

std::string RowAbout(const std::vector<ManualEntry>& entries, const std::string& module,
                     const std::string& owner, const std::string& name) {
    std::string about;
    for (const ManualEntry& entry : entries) {
        const bool isMeant = entry.page == module &&
                             std::find(entry.names.begin(), entry.names.end(), name) != entry.names.end() &&
                             (owner.empty() || entry.text.find("`" + owner + "`") != std::string::npos);
        std::istringstream lines(isMeant ? entry.text : std::string());
        for (std::string line; std::getline(lines, line);) {
            std::vector<std::string> names;
            if (StartsWith(line, "|")) AddFunctionsOfLine(line, names);
            if (std::find(names.begin(), names.end(), name) != names.end()) about = LastCell(line);
        }
    }
    return about;
}

std::vector<std::string> SimilarNames(const std::vector<ManualEntry>& entries, const std::string& word) {
    const std::string wanted = Key(word);
    const std::size_t most = wanted.size() / 3;
    std::vector<std::pair<std::size_t, std::string>> found;
    for (const ManualEntry& entry : entries) {
        for (const std::string& name : entry.names) {
            const std::size_t distance = EditDistance(Key(name), wanted, most);
            if (distance <= most) found.emplace_back(distance, name);
        }
    }
    std::sort(found.begin(), found.end());
    std::vector<std::string> names;
    for (std::size_t i = 0; i < found.size() && i < 3; ++i) names.push_back(found[i].second);
    return names;
}

std::string PlainText(const std::string& markdown) {
    std::string text, paragraph;
    std::istringstream lines(markdown);
    bool inCode = false;
    const auto endParagraph = [&] {
        text += Wrapped(WithoutMarks(paragraph));
        paragraph.clear();
    };
    for (std::string line; std::getline(lines, line);) {
        if (!inCode && IsProse(line)) {
            if (StartsWith(line, "- ")) endParagraph();
            paragraph += line + " ";
            continue;
        }
        endParagraph();
        if (!StartsWith(line, fence)) {
            text += PlainLine(line, inCode);
            continue;
        }
        inCode = !inCode;
        if (inCode) text += Lead(line.substr(fence.size(), line.find(' ') - fence.size()));
    }
    endParagraph();
    return text.substr(0, text.find_last_not_of('\n') + 1) + "\n";
}
