#include "statements/string_append.h"

#include <cctype>
#include <vector>

namespace {

bool IsWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

// Position behind a literal that begins at `at`.
std::size_t BehindLiteral(const std::string& text, std::size_t at) {
    const char quote = text[at];
    for (++at; at < text.size() && text[at] != quote; ++at)
        if (text[at] == '\\') ++at;
    return at + 1;
}

// The summands from `at` on. Empty when something other than "+" stands between them.
std::vector<std::string> Summands(const std::string& text, std::size_t at) {
    std::vector<std::string> summands;
    std::size_t start = at;
    int depth = 0;
    while (at < text.size()) {
        const char c = text[at];
        if (c == '"' || c == '\'') {
            at = BehindLiteral(text, at);
            continue;
        }
        if (c == '(' || c == '[' || c == '{') ++depth;
        if (c == ')' || c == ']' || c == '}') --depth;
        if (depth == 0 && c == '+' && text.compare(at - 1, 3, " + ") == 0) {
            summands.push_back(text.substr(start, at - 1 - start));
            start = at + 2;
        } else if (depth == 0 && std::string("+*/%<>=!&|?,;^").find(c) != std::string::npos &&
                   text.compare(at - 1, 2, "->") != 0) {
            return {};
        }
        ++at;
    }
    summands.push_back(text.substr(start));
    return summands;
}

bool NamesWord(const std::string& text, const std::string& word) {
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
        const bool begins = at == 0 || !IsWordCharacter(text[at - 1]);
        const std::size_t end = at + word.size();
        if (begins && (end == text.size() || !IsWordCharacter(text[end]))) return true;
    }
    return false;
}

// Whether evaluating the text may run code of the program's own, or go by another way to the target.
bool MayReachElsewhere(const std::string& text) {
    if (text.find('[') != std::string::npos) return true;
    for (std::size_t at = text.find('('); at != std::string::npos; at = text.find('(', at + 1)) {
        std::size_t end = at;
        while (end > 0 && text[end - 1] == ' ') --end;
        std::size_t begin = end;
        while (begin > 0 && (IsWordCharacter(text[begin - 1]) || text[begin - 1] == ':')) --begin;
        const std::string called = text.substr(begin, end - begin);
        if (!called.empty() && called != "std::to_string" && called != "std::string") return true;
    }
    return false;
}

std::string LastWord(const std::string& text) {
    std::size_t begin = text.size();
    while (begin > 0 && IsWordCharacter(text[begin - 1])) --begin;
    return text.substr(begin);
}

}  // namespace

std::string AppendStatement(const std::string& target, const std::string& value, bool ownVariable) {
    const std::string head = target + " + ";
    const std::string word = LastWord(target);
    if (word.empty() || value.compare(0, head.size(), head) != 0) return {};
    const std::string rest = value.substr(head.size());
    if (NamesWord(rest, word) || (!ownVariable && MayReachElsewhere(rest))) return {};
    std::string text = target;
    const std::vector<std::string> summands = Summands(value, head.size());
    for (std::size_t i = 0; i < summands.size(); ++i) {
        if (i > 0) text = "(" + text + ")";
        text += " += " + summands[i];
    }
    return summands.empty() ? std::string() : text + ";";
}
