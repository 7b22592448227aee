#include "symbols/foreign_fixes.h"

#include <algorithm>
#include <initializer_list>

#include "base/keywords.h"
#include "lexer/lexer.h"
#include "symbols/fixes.h"
#include "symbols/foreign_rows.h"
#include "symbols/foreign_signs.h"
#include "symbols/foreign_words.h"
#include "symbols/identifiers.h"
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

// Types as they stand in front of names elsewhere.
const ForeignRow typeRows[] = {
    {"int integer int32", "Int"},
    {"double float", "Double"},
    {"bool boolean", "Bool"},
    {"string str", "String"},
    {"byte", "Byte"},
    {"short", "Short"},
    {"long", "Long"},
};

// What is called to make a value of another one.
const ForeignRow callRows[] = {
    {"str cstr string text", "ToString"},
    {"val cint clng int integer long parseint", "ToInt"},
    {"cdbl csng float double real parsefloat", "ToDouble"},
};

// Puts the text in place of each of the others, wherever it stands.
void ReplaceAll(korvel::Diagnostic& mistake, const std::string& line,
                std::initializer_list<std::string_view> others, const std::string& text) {
    for (const std::string_view other : others)
        for (std::size_t at = line.find(other); at != std::string::npos; at = line.find(other, at + 1))
            AddFix(mistake, at, at + other.size(), text);
}

// Which word stands here for one that is so called elsewhere; null without one.
const char* SameWord(const std::string& word) {
    static const ForeignWords index = IndexOf(sameRows);
    if (DeclaresElsewhere(word)) return localDefList.size() > 1 ? "Local" : "Global";
    return Find(index, word);
}

std::string TypeHere(const std::string& type) {
    const char* const word = Find(IndexOf(sameRows), Lower(type));
    return word == nullptr ? type : word;
}

// Of "name As Type", from the name on.
void FixAs(korvel::Diagnostic& mistake, const WrongLine& line, std::size_t name) {
    const std::string& type = line.tokens[name + 2];
    const bool isKnown = IsName(line.tokens[name]) && IsWord(line.tokens[name + 1], "as") && IsName(type) &&
                         !IsWord(type, "new");
    if (isKnown) AddFix(mistake, line.End(name), line.End(name + 2), ":" + TypeHere(type));
}

// int a = 1, b[3]
bool FixTyped(korvel::Diagnostic& mistake, const WrongLine& line) {
    static const ForeignWords index = IndexOf(typeRows);
    const char* const type = line.at == 0 ? Find(index, Lower(line.tokens[0])) : nullptr;
    if (type == nullptr) return false;
    std::vector<std::size_t> names;
    std::size_t name = 1, end = 1;
    while (end < line.tokens.size() && line.tokens.SignAt(end) != '|') ++end;
    for (const TokenSpan part : line.tokens.Slice(1, end).SplitAt(',')) {
        const char behind = part.SignAt(1);
        const bool isDeclared = IsName(part[0]) && (part.size() == 1 || behind == '=' || behind == '[');
        if (!isDeclared) return false;
        names.push_back(name);
        name += part.size() + 1;
    }
    AddFix(mistake, line.Start(0), line.End(0), localDefList.size() > 1 ? "Local" : "Global");
    for (const std::size_t declared : names)
        AddFix(mistake, line.End(declared), line.End(declared), std::string(":") + type);
    return true;
}

// The name of a Function, and the '$' that it may have behind it elsewhere.
void FixCall(korvel::Diagnostic& mistake, const WrongLine& line, const std::string& function) {
    const bool hasSuffix = line.tokens.SignAt(line.at + 1) == '$';
    if (function == line.tokens[line.at] && !hasSuffix) return;
    AddFix(mistake, line.Start(line.at), line.End(line.at + (hasSuffix ? 1 : 0)), function);
}

// Of a word that is called, with or without the '$' of elsewhere, the Function that does the same here.
std::string CalledHere(const WrongLine& line) {
    static const ForeignWords index = IndexOf(callRows);
    const std::string& meant = line.tokens[line.at];
    const bool hasSuffix = line.tokens.SignAt(line.at + 1) == '$';
    const bool isCalled = line.tokens.SignAt(line.at + (hasSuffix ? 2 : 1)) == '(';
    if (const char* const name = isCalled ? Find(index, Lower(meant)) : nullptr) return name;
    const std::string function = FunctionCalledElsewhere(meant);
    return function.empty() && hasSuffix && isCalled ? meant : function;
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
        AddFix(mistake, at, second + tokens[1].size(), tokens[0] + tokens[1]);
}

void FixForeignWord(korvel::Diagnostic& mistake, const WrongLine& line) {
    ReplaceAll(mistake, line.text, {"\xE2\x80\x9C", "\xE2\x80\x9D"}, "\"");
    ReplaceAll(mistake, line.text, {"\\\""}, "~q");
    const std::size_t at = line.at;
    if (!mistake.fixes.empty() || at >= line.tokens.size()) return;
    if (FixTyped(mistake, line)) return;
    const std::string &meant = line.tokens[at], function = CalledHere(line);
    const bool isLoop = at == 1 && line.tokens.KeywordAt(0) == Keyword::For && line.tokens.SignAt(2) == '=';
    if (isLoop) return AddFix(mistake, line.Start(at), line.Start(at), "Local ");
    const char* const word = function.empty() ? SameWord(Lower(meant)) : nullptr;
    if (!function.empty()) return FixCall(mistake, line, function);
    if (word == nullptr || BeginsText(line.text, line.tokens, at)) return FixSign(mistake, line);
    if (IsWord(meant, "as")) return FixAs(mistake, line, at - 1);
    const std::size_t start = line.Start(at), behind = line.text.find_first_not_of(" \t", line.End(at));
    const std::size_t end = *word == '\0' ? std::min(behind, line.text.size()) : line.End(at);
    AddFix(mistake, start, end, word);
    if (DeclaresElsewhere(meant))
        for (std::size_t name = at + 1; name < line.tokens.size(); ++name) FixAs(mistake, line, name);
}
