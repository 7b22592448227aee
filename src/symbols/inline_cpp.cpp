#include "symbols/inline_cpp.h"

#include <algorithm>
#include <cctype>
#include <initializer_list>
#include <unordered_map>

#include "base/run.h"
#include "lexer/source_lines.h"
#include "symbols/symbols.h"

namespace {

// Names, and signs of one character each; of literals only their opening quote.
struct Scanned {
    std::vector<std::string> tokens;
    std::unordered_map<std::string, std::vector<std::size_t>> beforeParentheses;  // where names stand so
    bool includesFiles = false;
    bool done = false;
};

Scanned scanned;
const PartOfRun partOfRun(scanned);

class Scanner {
public:
    explicit Scanner(const std::string& source) : text(source) {}

    void Run() {
        while (at < text.size()) Step();
    }

private:
    const std::string& text;
    std::size_t at = 0;
    bool lineStart = true;

    bool Meets(const char* start) const { return text.compare(at, std::string(start).size(), start) == 0; }

    // Goes behind the next `end`.
    void Pass(const std::string& end) {
        const std::size_t found = text.find(end, at);
        at = found == std::string::npos ? text.size() : found + end.size();
    }

    void Step() {
        const char c = text[at];
        if (c == '\n') {
            lineStart = true;
            ++at;
        } else if (std::isspace(static_cast<unsigned char>(c)) != 0) {
            ++at;
        } else if (Meets("//")) {
            Pass("\n");
            lineStart = true;
        } else if (Meets("/*")) {
            at += 2;
            Pass("*/");
        } else if (c == '#' && lineStart) {
            PassDirective();
        } else {
            lineStart = false;
            TakeToken(c);
        }
    }

    void PassDirective() {
        const std::size_t begin = at;
        do Pass("\n");
        while (at < text.size() && at > begin + 1 && text[at - 2] == '\\');
        if (text.substr(begin, at - begin).find("include") != std::string::npos) scanned.includesFiles = true;
    }

    void TakeToken(char c) {
        if (c == '"' || c == '\'') {
            scanned.tokens.emplace_back(1, c);
            return PassQuoted(c);
        }
        const std::size_t begin = at;
        while (at < text.size() && IsNameByte(text[at])) ++at;
        const std::string word = text.substr(begin, at - begin);
        if (!word.empty() && word.back() == 'R' && at < text.size() && text[at] == '"') return PassRaw();
        if (word.empty()) ++at;
        scanned.tokens.push_back(word.empty() ? std::string(1, c) : word);
    }

    void PassQuoted(char quote) {
        for (++at; at < text.size() && text[at] != quote && text[at] != '\n'; ++at)
            if (text[at] == '\\') ++at;
        ++at;
    }

    // R"mark(...)mark"
    void PassRaw() {
        const std::size_t open = text.find('(', at);
        const std::size_t mark = at + 1;
        scanned.tokens.emplace_back("\"");
        if (open == std::string::npos) {
            at = text.size();
            return;
        }
        const std::string end = ")" + text.substr(mark, open - mark) + "\"";
        at = open;
        Pass(end);
    }
};

const std::vector<std::string>& ScannedTokens() {
    if (scanned.done) return scanned.tokens;
    scanned.done = true;
    for (const std::string& file : symbols.sourceFiles) {
        SourceLines lines(Reading::Uses);
        std::string text;
        lines.onInlineCpp = [&text](const InlineLine& line) { text += line.text + "\n"; };
        if (!lines.Open(file)) continue;
        while (lines.Next()) continue;
        Scanner(text).Run();
    }
    for (std::size_t i = 1; i < scanned.tokens.size(); ++i)
        if (scanned.tokens[i] == "(") scanned.beforeParentheses[scanned.tokens[i - 1]].push_back(i - 1);
    return scanned.tokens;
}

bool IsAny(const std::string& token, std::initializer_list<const char*> words) {
    return std::any_of(words.begin(), words.end(), [&](const char* word) { return token == word; });
}

// Whether a token may stand in front of the name that a declaration declares.
bool MayPrecedeName(const std::string& token) {
    if (IsAny(token, {"return", "else", "do", "throw", "case", "goto", "new", "delete"})) return false;
    return IsNameByte(token[0]) || IsAny(token, {"*", "&", ":", "<", ">", "\""});
}

// Linkage says nothing about the type.
bool IsLinkage(const std::string& token) { return IsAny(token, {"extern", "static", "inline", "\""}); }

std::string Joined(const std::vector<std::string>& tokens, std::size_t from, std::size_t to) {
    std::string text;
    for (std::size_t i = from; i < to; ++i) {
        if (IsLinkage(tokens[i])) continue;
        const bool apart = !text.empty() && IsNameByte(text.back()) && IsNameByte(tokens[i][0]);
        text += (apart ? " " : "") + tokens[i];
    }
    return text;
}

// The type of the parameter [from, to): without its name and its default value.
std::string ParameterType(const std::vector<std::string>& tokens, std::size_t from, std::size_t to) {
    to = static_cast<std::size_t>(std::find(tokens.begin() + static_cast<std::ptrdiff_t>(from),
                                            tokens.begin() + static_cast<std::ptrdiff_t>(to), "=") -
                                  tokens.begin());
    const bool array = to > from + 1 && tokens[to - 1] == "]";
    if (array) to -= 2;
    const bool named = to > from + 1 && IsNameByte(tokens[to - 1][0]) && tokens[to - 2] != ":" &&
                       !IsAny(tokens[to - 1], {"char", "string", "const"});
    return Joined(tokens, from, named ? to - 1 : to) + (array ? "*" : "");
}

// Reads the parameters behind the "(" at `open`; false when it is not closed.
bool ReadParameters(const std::vector<std::string>& tokens, std::size_t open, InlineFunction& function) {
    int depth = 0;
    std::size_t from = open + 1;
    for (std::size_t i = open; i < tokens.size(); ++i) {
        if (IsAny(tokens[i], {"(", "<"})) ++depth;
        if (IsAny(tokens[i], {")", ">"})) --depth;
        const bool ends = depth == 0;
        if (!ends && !(depth == 1 && tokens[i] == ",")) continue;
        if (i > from) function.parameters.push_back(ParameterType(tokens, from, i));
        from = i + 1;
        if (ends) return true;
    }
    return false;
}

}  // namespace

std::vector<InlineFunction> FindInlineFunctions(const std::string& name) {
    const std::vector<std::string>& tokens = ScannedTokens();
    std::vector<InlineFunction> functions;
    for (const std::size_t at : scanned.beforeParentheses[name]) {
        std::size_t head = at;
        while (head > 0 && MayPrecedeName(tokens[head - 1])) --head;
        InlineFunction function;
        function.result = Joined(tokens, head, at);
        if (!function.result.empty() && ReadParameters(tokens, at + 1, function))
            functions.push_back(std::move(function));
    }
    return functions;
}

bool InlineCppIncludesFiles() {
    ScannedTokens();
    return scanned.includesFiles;
}
