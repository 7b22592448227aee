#include "symbols/foreign_signs.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "base/keywords.h"
#include "symbols/name_characters.h"

namespace {

// Two signs in a row, of which the mistake is about one.
struct PairRow {
    const char* signs;
    const char* hint;
};
const PairRow pairRows[] = {
    {":=", "An assignment is written with '=' alone: n = 3"},
    {"**", "Write Pow(a, b) for a power"},
    {"<<", "Write a Shl b"},
    {">>", "Write a Shr b"},
    {"=>", "Write >="},
    {"=<", "Write <="},
    {"->", "Fields and Methods stand behind '\\': p\\hp"},
    {"//", "A comment begins with ';'. Between whole numbers '/' gives a whole number: 7 / 2 is 3"},
};

bool Has(std::string_view line, std::string_view part) { return line.find(part) != std::string_view::npos; }

bool IsText(const std::string& token) { return !token.empty() && token[0] == '"'; }

const char* HintAtPair(TokenSpan tokens, std::size_t at) {
    const bool isResult = tokens.SignAt(at) == '-' && tokens.SignAt(at + 1) == '>';
    if (isResult && tokens.KeywordAt(0) == Keyword::Function)
        return "The type of what it gives stands behind its name: Function Add:Int(a:Int, b:Int)";
    for (const PairRow& row : pairRows) {
        const bool begins = tokens.SignAt(at) == row.signs[0] && tokens.SignAt(at + 1) == row.signs[1];
        const bool ends =
            at > 0 && tokens.SignAt(at - 1) == row.signs[0] && tokens.SignAt(at) == row.signs[1];
        if (begins || ends) return row.hint;
    }
    return nullptr;
}

// In a declaration of variables: Local a(10), Local a = [1, 2]
const char* HintAtBracket(TokenSpan tokens, std::size_t at) {
    if (!Has(tokens.KeywordAt(0), trait::variables)) return nullptr;
    const char sign = tokens.SignAt(at);
    const bool isValue = at > 0 && tokens.SignAt(at - 1) == '=';
    if (isValue && sign == '{' && tokens.SignAt(at + 1) == '}')
        return "A TStringMap finds values by texts. It comes with Include \"std/maps.kvl\"";
    if (sign == '(' && at < tokens.FindEquals()) return "An array has its size in brackets: Local a:Int[10]";
    return isValue && (sign == '[' || sign == '{') ? "An array gets its values one by one: a[0] = 3"
                                                   : nullptr;
}

// n$ = "x", Chr$(65)
const char* HintAtSuffix(TokenSpan tokens, std::size_t at) {
    if (tokens.SignAt(at + 1) == '$' && IsNameText(tokens[at]))
        return "Names have no '$' at their end: Chr(65)";
    constexpr std::string_view suffixes = "$#%!";
    const char sign = tokens.SignAt(at);
    const bool isSuffix = sign != '\0' && suffixes.find(sign) != std::string_view::npos;
    return isSuffix && at > 0 && at < 3 ? "The type of a variable stands behind a colon: Local name:String"
                                        : nullptr;
}

}  // namespace

// "..." in the quotes of word processors, ' of other languages, quotes inside of quotes
const char* HintAtQuotes(std::string_view line, TokenSpan tokens, std::size_t at) {
    const std::string& meant = tokens[at];
    for (const char* quote : {"\xE2\x80\x9C", "\xE2\x80\x9D", "\xE2\x80\x98", "\xE2\x80\x99"})
        if (Has(line, quote)) return "Texts stand between straight quotes: \"text\"";
    const bool isBetweenTexts = at > 0 && IsText(tokens[at - 1]) && !IsText(meant) && IsText(tokens[at + 1]);
    const bool isWord = isBetweenTexts && IsNameText(meant) && FindKeyword(meant) == Keyword::None;
    if (Has(line, "\\\"") || isWord) return "A quote in a text is written ~q: \"say ~qhi~q\"";
    if ((meant == "f" || meant == "F") && IsText(tokens[at + 1]))
        return "A text may have holes as it stands: \"{%count} times {$name}\"";
    if (meant != "'" && meant.substr(0, 1) != "`") return nullptr;
    const bool isPair = std::count(line.begin(), line.end(), meant[0]) > 1;
    return at > 0 && isPair ? "Texts stand between double quotes: \"text\"" : "A comment begins with ';'";
}

// A sign that is wrong where it stands: Print "a": Print "b"
const char* HintAtSign(TokenSpan tokens, std::size_t at) {
    if (const char* hint = HintAtPair(tokens, at)) return hint;
    if (const char* hint = HintAtBracket(tokens, at)) return hint;
    const bool isMember = tokens.SignAt(at) == '.' || tokens.SignAt(at) == '\\';
    if (isMember && at == 0) return "Inside of With the object is called its: its\\x";
    if (tokens.SignAt(at) == ':' && Has(tokens.KeywordAt(0), trait::opens))
        return "Lines that begin blocks end without ':'; on one line write If n = 1 Then Print n";
    if (tokens.SignAt(at) == ':') return "Statements in one line stand apart by '|'";
    const std::string_view meant = tokens[at];
    if (meant.substr(0, 2) == "0x" || meant.substr(0, 2) == "0X")
        return "Hexadecimal numbers begin with '$': $FF";
    if (meant == "," && tokens.KeywordAt(0) == Keyword::Print)
        return "Print joins with '&': Print a & \" \" & b";
    return HintAtSuffix(tokens, at);
}
