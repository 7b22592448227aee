#include "symbols/inline_cpp.h"

#include <algorithm>
#include <initializer_list>
#include <unordered_map>

#include "base/run.h"
#include "lexer/cpp_lines.h"
#include "lexer/source_lines.h"
#include "symbols/symbols.h"

namespace {

struct Name {
    std::size_t at;
    bool inBraces;
};

struct Scanned {
    std::vector<std::string> tokens;                                       // see CppLines
    std::unordered_map<std::string, std::vector<Name>> beforeParentheses;  // where names stand so
    bool includesFiles = false;
    bool done = false;
};

Scanned scanned;
const PartOfRun partOfRun(scanned);

// The braces of extern "C" { ... } count for nothing.
void NoteNames(const std::vector<std::string>& tokens) {
    int depth = 0;
    for (std::size_t i = 1; i < tokens.size(); ++i) {
        if (tokens[i] == "{" && tokens[i - 1] != "\"") ++depth;
        if (tokens[i] == "}" && depth > 0) --depth;
        if (tokens[i] == "(") scanned.beforeParentheses[tokens[i - 1]].push_back({i - 1, depth > 0});
    }
}

const std::vector<std::string>& ScannedTokens() {
    if (scanned.done) return scanned.tokens;
    scanned.done = true;
    for (const std::string& file : symbols.sourceFiles) {
        SourceLines lines(Reading::Uses);
        CppLines cpp;
        cpp.onToken = [](std::string_view token) { scanned.tokens.emplace_back(token); };
        lines.onInlineCpp = [&cpp](const InlineLine& line) {
            cpp.Read(line.text);
            if (cpp.IsDirective() && line.text.find("include") != std::string::npos)
                scanned.includesFiles = true;
        };
        if (!lines.Open(file)) continue;
        while (lines.Next()) continue;
    }
    NoteNames(scanned.tokens);
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
    for (const auto [at, inBraces] : scanned.beforeParentheses[name]) {
        std::size_t head = at;
        while (head > 0 && MayPrecedeName(tokens[head - 1])) --head;
        InlineFunction function;
        function.isStatic =
            !inBraces && std::any_of(tokens.begin() + static_cast<std::ptrdiff_t>(head),
                                     tokens.begin() + static_cast<std::ptrdiff_t>(at),
                                     [](const std::string& token) { return token == "static"; });
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
