#include "symbols/foreign_fixes.h"

#include <algorithm>
#include <initializer_list>

#include "base/keywords.h"
#include "lexer/lexer.h"
#include "symbols/foreign_rows.h"
#include "symbols/foreign_words.h"
#include "symbols/scopes.h"

namespace {

// Words in whose place others stand here, if nothing else is wrong with them.
const ForeignRow sameRows[] = {
    {"let set call case", ""},
    {"constant", "Const"},
    {"rem ' #", ";"},
    {"endwhile", "Wend"},
    {"endfor nextfor", "Next"},
    {"break leave", "Exit"},
    {"sub proc procedure def func fn", "Function"},
    {"endsub endproc enddef", "EndFunction"},
    {"self me", "this"},
    {"integer int32", "Int"},
    {"float single real decimal", "Double"},
    {"boolean logical", "Bool"},
    {"str text", "String"},
    {"elif elsif", "ElseIf"},
    {"nil none nothing nullptr", "Null"},
    {"is", "="},
    {"isnot", "<>"},
    {"div", "/"},
    {"println echo write writeln puts", "Print"},
    {"delete dispose free", "Remove"},
    {"switch", "Select"},
    {"as", ":"},
    {"#include", "Include"},
};

// Adds the change that puts the text in place of a part of the mistake's line.
void AddFix(korvel::Diagnostic& mistake, std::size_t at, std::size_t size, const std::string& text) {
    korvel::Fix& fix = mistake.fixes.emplace_back();
    fix.file = mistake.file;
    fix.line = mistake.line;
    fix.firstColumn = static_cast<int>(at) + 1;
    fix.lastColumn = static_cast<int>(at + size);
    fix.replacement = text;
}

// Puts the text in place of each of the others, wherever it stands.
void ReplaceAll(korvel::Diagnostic& mistake, const std::string& line,
                std::initializer_list<std::string_view> others, const std::string& text) {
    for (const std::string_view other : others)
        for (std::size_t at = line.find(other); at != std::string::npos; at = line.find(other, at + 1))
            AddFix(mistake, at, other.size(), text);
}

// Which word stands here for one that is so called elsewhere; null without one.
const char* SameWord(const std::string& word) {
    static const ForeignWords index = IndexOf(sameRows);
    if (IsAmong("dim var auto", word)) return localDefList.size() > 1 ? "Local" : "Global";
    return Find(index, word);
}

void FixSign(korvel::Diagnostic& mistake, const std::string& line, std::size_t at, std::string_view meant) {
    if (meant == "/" && at == line.find_first_not_of(" \t")) return AddFix(mistake, at, 2, ";");
    if (meant == ":") return line[at + 1] == '=' ? AddFix(mistake, at, 2, "=") : AddFix(mistake, at, 1, "|");
    if (meant.substr(0, 2) == "0x" || meant.substr(0, 2) == "0X") return AddFix(mistake, at, 2, "$");
}

// 'text' instead of a comment
bool IsQuote(std::string_view meant, std::string_view line) {
    return meant == "'" && std::count(line.begin(), line.end(), '\'') > 1;
}

}  // namespace

std::string_view TextOf(const korvel::Range& place, std::string_view line) {
    const auto first = static_cast<std::size_t>(place.firstColumn),
               last = static_cast<std::size_t>(place.lastColumn);
    const bool isKnown = first > 0 && first <= last && last <= line.size();
    return isKnown ? line.substr(first - 1, last - first + 1) : line.substr(0, 0);
}

void JoinWords(korvel::Diagnostic& mistake, const std::string& line) {
    const Tokens cut = Cut(TextOf(mistake, line));
    const TokenSpan tokens = cut;
    const auto at = static_cast<std::size_t>(mistake.firstColumn - 1);
    if (tokens.size() < 2) return;
    const std::size_t second = line.find_first_not_of(" \t", at + tokens[0].size());
    const Keyword joined = FindKeyword(tokens[0] + tokens[1]);
    const bool isApart = second != std::string::npos && second > at + tokens[0].size();
    if (isApart && (Has(joined, trait::divides) || BlockOf(joined) != Keyword::None))
        AddFix(mistake, at, second + tokens[1].size() - at, tokens[0] + tokens[1]);
}

void FixForeignWord(korvel::Diagnostic& mistake, const std::string& line) {
    ReplaceAll(mistake, line, {"\xE2\x80\x9C", "\xE2\x80\x9D"}, "\"");
    ReplaceAll(mistake, line, {"\\\""}, "~q");
    const Tokens cut = Cut(TextOf(mistake, line));
    if (!mistake.fixes.empty() || cut.empty()) return;
    const auto at = static_cast<std::size_t>(mistake.firstColumn - 1);
    const std::string& meant = cut[0]->text;
    const char* const word = SameWord(Lower(meant));
    const std::string function = FunctionCalledElsewhere(meant);
    std::size_t end = at + meant.size();
    if (word == nullptr && !function.empty() && function != meant)
        return AddFix(mistake, at, end - at, function);
    if (word == nullptr || IsQuote(meant, line)) return FixSign(mistake, line, at, meant);
    if (*word == '\0') end = std::min(line.find_first_not_of(" \t", end), line.size());
    AddFix(mistake, at, end - at, word);
}
