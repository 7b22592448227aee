#include "symbols/foreign_signs.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "base/keywords.h"
#include "symbols/name_characters.h"
#include "symbols/scopes.h"

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
    {"&=", "Write the assignment out: s = s + \"x\""},
    {"==", "A value is given with one '=': n = 3"},
    {"++", "Write the assignment out: n = n + 1"},
    {"--", "Write the assignment out: n = n - 1"},
    {"/*", "A comment begins with ';' and ends with its line"},
    {"*/", "A comment begins with ';' and ends with its line"},
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
    if (sign == ':' && at > 0 && tokens.SignAt(at - 1) == ']')
        return "The size of an array stands behind the type: Local a:Int[10]";
    if ((sign == '(' || sign == '{') && at < tokens.FindEquals())
        return "An array has its size in brackets: Local a:Int[10]";
    return isValue && (sign == '[' || sign == '{') ? "An array gets its values one by one: a[0] = 3"
                                                   : nullptr;
}

// &HFF, %101
const char* HintAtNumber(TokenSpan tokens, std::size_t at) {
    const char sign = tokens.SignAt(at);
    const std::string& digits = tokens[at + 1];
    const auto areAll = [&digits](std::size_t from, std::string_view allowed) {
        return digits.size() > from && digits.find_first_not_of(allowed, from) == std::string::npos;
    };
    const bool isBased = sign == '&' && !digits.empty();
    if (isBased && (digits[0] == 'H' || digits[0] == 'h') && areAll(1, "0123456789abcdefABCDEF"))
        return "Hexadecimal numbers begin with '$': $FF";
    const bool isBinary =
        (sign == '%' &&
         (at == 0 || !IsNameText(tokens[at - 1]) || FindKeyword(tokens[at - 1]) != Keyword::None) &&
         areAll(0, "01")) ||
        (isBased && (digits[0] == 'B' || digits[0] == 'b') && areAll(1, "01"));
    return isBinary ? "Write FromBinary(\"101\"). It comes with Include \"std/text.kvl\"" : nullptr;
}

// a, b = 1, 2 ; n = (1, 2)
const char* HintAtComma(TokenSpan tokens, std::size_t at) {
    if (tokens.SignAt(at) != ',') return nullptr;
    if (tokens.KeywordAt(0) == Keyword::Print) return "Print joins with '&': Print a & \" \" & b";
    const std::size_t equals = tokens.FindEquals();
    if (tokens.KeywordAt(0) == Keyword::None && equals != noToken && at < equals)
        return "One variable is assigned to at a time: a = 1 | b = 2";
    for (std::size_t i = 1; i < at; ++i)
        if (tokens.SignAt(i) == '(' && tokens.SignAt(i - 1) != '\0' && tokens.Matching(i) > at)
            return "Brackets hold one value; several fit into a Sequence, an array or a Type";
    return nullptr;
}

// n$ = "x", Chr$(65)
const char* HintAtSuffix(TokenSpan tokens, std::size_t at) {
    constexpr std::string_view suffixes = "$#%!";
    const auto isSuffix = [&](std::size_t i) {
        return tokens.SignAt(i) != '\0' && suffixes.find(tokens.SignAt(i)) != std::string_view::npos;
    };
    const bool isName = IsNameText(tokens[at]);
    if (isName && tokens.SignAt(at + 1) == '$' && tokens.SignAt(at + 2) != '=')
        return "Names have no '$' at their end: Chr(65)";
    const bool isGiven = isName && isSuffix(at + 1) && tokens.SignAt(at + 2) == '=';
    return isGiven || (isSuffix(at) && at > 0 && at < 3)
               ? "The type of a variable stands behind a colon: Local name:String"
               : nullptr;
}

}  // namespace

// Function F(a:Int, :Int) is another one.
bool LacksName(TokenSpan tokens, std::size_t at) {
    const char sign = tokens.SignAt(at), before = at > 0 ? tokens.SignAt(at - 1) : '\0';
    const bool isFirst = Has(tokens.KeywordAt(0), trait::variables) && at == 1;
    const bool isNext =
        Has(tokens.KeywordAt(0), trait::variables | trait::routine) && (before == ',' || before == '(');
    return (sign == ':' || sign == '=') && (isFirst || isNext);
}

bool IsObject(const Word& name) {
    const Variable* const variable = FindVariable(name);
    return variable != nullptr && variable->type.IsSingle() && variable->type.cls != nullptr;
}

bool BeginsText(std::string_view line, TokenSpan tokens, std::size_t at) {
    const char quote = tokens.SignAt(at);
    if (at == 0 || (quote != '\'' && quote != '`')) return false;
    const Word& before = tokens.At(at - 1);
    const bool isValue =
        ClosesBracket(before.sign) ||
        (before.sign == '\0' && (before.keyword == Keyword::None || Has(before.keyword, trait::value)));
    return !isValue && std::count(line.begin(), line.end(), quote) > 1;
}

bool EndsOpen(TokenSpan tokens) {
    if (tokens.size() < 2) return false;
    const Word& last = tokens.At(tokens.size() - 1);
    constexpr std::string_view signs = "+-*/,&=<>^";
    const bool isSign = last.sign != '\0' && signs.find(last.sign) != std::string_view::npos;
    const bool isPair = tokens.SignAt(tokens.size() - 2) == last.sign;  // n++
    return (isSign && !isPair) || Has(last.keyword, trait::operation);
}

// "..." in the quotes of word processors, ' of other languages, quotes inside of quotes
const char* HintAtQuotes(std::string_view line, TokenSpan tokens, std::size_t at) {
    const std::string& meant = tokens[at];
    for (const char* quote : {"\xE2\x80\x9C", "\xE2\x80\x9D", "\xE2\x80\x98", "\xE2\x80\x99"})
        if (Has(line, quote)) return "Texts stand between straight quotes: \"text\"";
    const bool isBetweenTexts = at > 0 && IsText(tokens[at - 1]) && !IsText(meant) && IsText(tokens[at + 1]);
    const bool isWord = isBetweenTexts && IsNameText(meant) && FindKeyword(meant) == Keyword::None;
    if (Has(line, "\\\"") || Has(line, "\"\"\"") || isWord)
        return "A quote in a text is written ~q: \"say ~qhi~q\"";
    if ((meant == "f" || meant == "F") && IsText(tokens[at + 1]))
        return "A text may have holes as it stands: \"{%count} times {$name}\"";
    if (meant != "'" && meant.substr(0, 1) != "`") return nullptr;
    return BeginsText(line, tokens, at) ? "Texts stand between double quotes: \"text\""
                                        : "A comment begins with ';'";
}

// A sign that is wrong where it stands: Print "a": Print "b"
const char* HintAtSign(TokenSpan tokens, std::size_t at) {
    for (const auto look : {HintAtPair, HintAtBracket, HintAtNumber, HintAtComma})
        if (const char* hint = look(tokens, at)) return hint;
    const bool isMember = tokens.SignAt(at) == '.' || tokens.SignAt(at) == '\\';
    if (isMember && at == 0) return "Inside of With the object is called its: its\\x";
    const Keyword first = tokens.KeywordAt(0);
    if (tokens.SignAt(at) == ':' && (first == Keyword::Case || first == Keyword::Default))
        return "Lines with Case or Default end without ':'";
    if (LacksName(tokens, at)) return "A name stands in front of it: n:Int = 3";
    if (tokens.SignAt(at) == ':' && Has(first, trait::opens | trait::divides))
        return "Lines that begin blocks end without ':'; on one line write If n = 1 Then Print n";
    if (tokens.SignAt(at) == ':' && at == 1 && IsObject(tokens.At(0)))
        return "Fields and Methods stand behind '\\': p\\hp";
    if (tokens.SignAt(at) == ':') return "Statements in one line stand apart by '|'";
    const std::string_view meant = tokens[at];
    if (meant.substr(0, 2) == "0x" || meant.substr(0, 2) == "0X")
        return "Hexadecimal numbers begin with '$': $FF";
    return HintAtSuffix(tokens, at);
}
