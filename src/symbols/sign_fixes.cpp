#include "symbols/sign_fixes.h"

#include <algorithm>
#include <string_view>

#include "base/keywords.h"
#include "symbols/fixes.h"
#include "symbols/foreign_signs.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"
#include "symbols/symbols.h"

namespace {

bool IsInBrackets(TokenSpan tokens, std::size_t at) {
    for (std::size_t i = 0; i < at; ++i)
        if (OpensBracket(tokens.SignAt(i)) && tokens.Matching(i) > at) return true;
    return false;
}

bool IsPair(const WrongLine& line, std::size_t at, char first, char second) {
    return line.tokens.SignAt(at) == first && line.tokens.SignAt(at + 1) == second &&
           line.Start(at) + 1 == line.Start(at + 1);
}

// Local a[3]:Int
void MoveSize(korvel::Diagnostic& mistake, const WrongLine& line) {
    std::size_t open = 0;
    while (open < line.at && line.tokens.SignAt(open) != '[') ++open;
    while (open < line.at && line.tokens.SignAt(open - 1) == ',') ++open;
    std::size_t behind = open;
    while (line.tokens.SignAt(behind) == '[') behind = line.tokens.Behind(behind);
    const std::string& type = line.tokens[line.at + 1];
    if (behind != line.at || !IsName(type)) return;
    const std::size_t from = line.Start(open);
    AddFix(mistake, from, line.End(line.at + 1),
           ":" + type + line.text.substr(from, line.End(line.at - 1) - from));
}

// Whether a statement may begin with the token.
bool MayBegin(const Word& word) {
    return word.sign == '\0' && IsName(word.text) && !IsBasicType(word.text) && !IsClass(word);
}

void FixColon(korvel::Diagnostic& mistake, const WrongLine& line) {
    const TokenSpan tokens = line.tokens;
    const std::size_t start = line.Start(line.at), end = line.End(line.at);
    const Keyword first = tokens.KeywordAt(0);
    if (IsPair(line, line.at, ':', '=')) return AddFix(mistake, start, end + 1, "=");
    if (IsInBrackets(tokens, line.at)) return;
    if (line.at > 0 && tokens.SignAt(line.at - 1) == ']' && Has(first, trait::variables))
        return MoveSize(mistake, line);
    const bool isHead = Has(first, trait::opens | trait::divides) || first == Keyword::Case ||
                        first == Keyword::Default || first == Keyword::Repeat;
    if (isHead && line.at + 1 == tokens.size()) return AddFix(mistake, start, end, "");
    const bool isIf = first == Keyword::If || first == Keyword::ElseIf;
    if (isIf && tokens.Find(Keyword::Then) == noToken) return AddFix(mistake, start, end, " Then");
    if (line.at == 1 && IsObject(tokens.At(0))) return AddFix(mistake, start, end, "\\");
    if (line.at > 0 && MayBegin(tokens.At(line.at + 1)) && !LacksName(tokens, line.at))
        AddFix(mistake, start, end, "|");
}

bool IsVisible(const Word& name) {
    return FindVariable(name) != nullptr || FindFunction(name.text) != nullptr || IsClass(name);
}

// "// two" and "// 2 loaves" are comments, n // 2 may be a division.
void FixSlashes(korvel::Diagnostic& mistake, const WrongLine& line, std::size_t at) {
    const TokenSpan behind = line.tokens.From(at + 2);
    const bool isWord = IsName(behind[0]) && !IsVisible(behind.At(0));
    const bool areWords = behind.size() > 1 && behind.SignAt(0) == '\0' && behind.SignAt(1) == '\0';
    if (at == 0 || behind.empty() || isWord || areWords)
        AddFix(mistake, line.Start(at), line.End(at + 1), ";");
}

// /* text */ , behind which nothing stands
void FixComment(korvel::Diagnostic& mistake, const WrongLine& line, std::size_t at) {
    const std::size_t end = line.text.find("*/", line.End(at + 1));
    const bool isLast = end != std::string::npos && end + 2 == line.text.find_last_not_of(" \t\r") + 1;
    if (!isLast) return;
    AddFix(mistake, line.Start(at), line.End(at + 1), ";");
    AddFix(mistake, line.text.find_last_not_of(" \t", end - 1) + 1, end + 2, "");
}

// 'text'
void FixQuotes(korvel::Diagnostic& mistake, const WrongLine& line) {
    const std::size_t open = line.Start(line.at), close = line.text.find(line.text[open], open + 1);
    const auto quotes = std::count(line.text.begin(), line.text.end(), line.text[open]);
    if (quotes % 2 != 0 || line.text.substr(open, close - open).find('"') != std::string::npos) return;
    AddFix(mistake, open, open + 1, "\"");
    AddFix(mistake, close, close + 1, "\"");
}

// The statement in which a token stands.
struct Bounds {
    std::size_t begin, end;
};

bool Parts(const Word& word) {
    return word.sign == '|' || word.keyword == Keyword::Then || word.keyword == Keyword::Else ||
           word.keyword == Keyword::ElseIf || word.keyword == Keyword::EndIf;
}

Bounds StatementAround(TokenSpan tokens, std::size_t at) {
    Bounds bounds = {at, at};
    while (bounds.begin > 0 && !Parts(tokens.At(bounds.begin - 1))) --bounds.begin;
    while (bounds.end < tokens.size() && !Parts(tokens.At(bounds.end))) ++bounds.end;
    return bounds;
}

// What is assigned to: a variable, its Fields and items.
bool IsTarget(TokenSpan tokens) {
    const Keyword first = tokens.KeywordAt(0);
    const bool isName =
        IsName(tokens[0]) && (first == Keyword::None || first == Keyword::This || first == Keyword::Its);
    return isName && tokens.FindEquals() == noToken && tokens.SplitAt(',').size() == 1;
}

// Whether it stays together behind an operator: n, Twice(n + 1), but not n + 1.
bool IsOneOperand(TokenSpan tokens) {
    constexpr std::string_view joins = "\\.";
    for (std::size_t i = 0; i < tokens.size(); i = tokens.Behind(i)) {
        const char sign = tokens.SignAt(i);
        const bool joinsOn = sign == '\0' || OpensBracket(sign) || joins.find(sign) != std::string_view::npos;
        if (!joinsOn || Has(tokens.KeywordAt(i), trait::operation)) return false;
    }
    return true;
}

std::string Between(const WrongLine& line, std::size_t begin, std::size_t end) {
    const std::size_t from = line.Start(begin);
    return line.text.substr(from, line.End(end - 1) - from);
}

// n++, --n
bool FixStep(korvel::Diagnostic& mistake, const WrongLine& line, std::size_t at) {
    const char sign = line.tokens.SignAt(at);
    if ((sign != '+' && sign != '-') || !IsPair(line, at, sign, sign)) return false;
    const Bounds all = StatementAround(line.tokens, at);
    const bool isBehind = at + 2 == all.end && at > all.begin;
    const std::size_t begin = isBehind ? all.begin : at + 2, end = isBehind ? at : all.end;
    if ((!isBehind && at != all.begin) || !IsTarget(line.tokens.Slice(begin, end))) return false;
    const std::string target = Between(line, begin, end);
    AddFix(mistake, line.Start(all.begin), line.End(all.end - 1),
           target + " = " + target + " " + sign + " 1");
    return true;
}

// n += 2
bool FixCompound(korvel::Diagnostic& mistake, const WrongLine& line, std::size_t at) {
    constexpr std::string_view signs = "+-*/&";
    const char sign = line.tokens.SignAt(at);
    if (sign == '\0' || signs.find(sign) == std::string_view::npos || !IsPair(line, at, sign, '='))
        return false;
    const Bounds all = StatementAround(line.tokens, at);
    const bool hasValue = at > all.begin && at + 2 < all.end;
    if (!hasValue || !IsTarget(line.tokens.Slice(all.begin, at))) return false;
    const std::string target = Between(line, all.begin, at), value = Between(line, at + 2, all.end);
    const bool isOne = IsOneOperand(line.tokens.Slice(at + 2, all.end));
    AddFix(mistake, line.Start(all.begin), line.End(all.end - 1),
           target + " = " + target + " " + (sign == '&' ? '+' : sign) + " " +
               (isOne ? value : "(" + value + ")"));
    return true;
}

// If n = 1 Print n
void FixThen(korvel::Diagnostic& mistake, const WrongLine& line) {
    const Keyword meant = line.tokens.KeywordAt(line.at);
    if (meant == Keyword::None || line.at >= line.tokens.size()) return;
    const Bounds all = StatementAround(line.tokens, line.at);
    const bool isElseIf =
        all.begin > 0 && line.tokens.KeywordAt(all.begin - 1) == Keyword::ElseIf && line.at > all.begin;
    const bool isIf = line.tokens.KeywordAt(all.begin) == Keyword::If && line.at > all.begin + 1;
    const bool begins = meant == Keyword::Print || meant == Keyword::Return || meant == Keyword::Exit ||
                        meant == Keyword::Continue || meant == Keyword::End;
    if ((isIf || isElseIf) && begins) AddFix(mistake, line.Start(line.at), line.Start(line.at), "Then ");
}

}  // namespace

std::size_t WrongLine::Start(std::size_t token) const {
    std::size_t start = 0;
    for (std::size_t i = 0; i <= token && i < tokens.size(); ++i) {
        start = text.find(tokens[i], start);
        if (i < token) start += tokens[i].size();
    }
    return start;
}

void FixSign(korvel::Diagnostic& mistake, const WrongLine& line) {
    const std::size_t at = line.at, before = at > 0 ? at - 1 : 0;
    if (at >= line.tokens.size()) return;
    if (line.tokens.SignAt(at) == ':') return FixColon(mistake, line);
    if (IsPair(line, at, '/', '/')) return FixSlashes(mistake, line, at);
    if (IsPair(line, before, '/', '/')) return FixSlashes(mistake, line, before);
    for (const std::size_t comment : {before, at})
        if (IsPair(line, comment, '/', '*')) return FixComment(mistake, line, comment);
    for (const std::size_t arrow : {before, at})
        if (IsPair(line, arrow, '-', '>') && arrow > 0 && IsName(line.tokens[arrow + 2]))
            return AddFix(mistake, line.Start(arrow), line.End(arrow + 1), "\\");
    if (BeginsText(line.text, line.tokens, at)) return FixQuotes(mistake, line);
    const std::string begin = line.tokens[at].substr(0, 2);
    if (begin == "0x" || begin == "0X") AddFix(mistake, line.Start(at), line.Start(at) + 2, "$");
}

void FixStatement(korvel::Diagnostic& mistake, const WrongLine& line) {
    for (std::size_t i = 0; i < line.tokens.size(); ++i) {
        const int column = static_cast<int>(line.Start(i)) + 1;
        const bool isMeant = mistake.firstColumn <= column && column <= mistake.lastColumn;
        if (isMeant && (FixStep(mistake, line, i) || FixCompound(mistake, line, i))) return;
    }
    FixThen(mistake, line);
}
