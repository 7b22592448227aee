#include "kv/format/line.h"

#include <vector>

#include "kv/format/spelling.h"
#include "lexer/lexer.h"

namespace {

const char blanks[] = " \t";

bool Compares(char sign) { return sign == '<' || sign == '>' || sign == '='; }
bool Calculates(char sign) {
    return sign == '+' || sign == '-' || sign == '*' || sign == '/' || sign == '^' || sign == '&';
}

// The first of the three tokens of 1e-3.
bool AwaitsExponent(const std::string& token) {
    return IsDigit(token[0]) && (token.back() == 'e' || token.back() == 'E');
}

// A sign between two operands. The first word of a statement may be called with what follows: "Move -1".
bool IsBetweenOperands(TokenSpan tokens, std::size_t at) {
    const Keyword before = at > 1 ? tokens.KeywordAt(at - 2) : Keyword::Then;
    if (before == Keyword::Then || before == Keyword::Else || AwaitsExponent(tokens[at - 1])) return false;
    return Calculates(tokens.SignAt(at)) && at + 1 < tokens.size() && EndsOperand(tokens, at - 1);
}

// Two signs that are one operator: "a && b", "a != b".
bool IsPair(TokenSpan tokens, std::size_t at) {
    const char before = at > 0 ? tokens.SignAt(at - 1) : '\0', sign = tokens.SignAt(at);
    return (before == '&' && sign == '&') || (before == '!' && sign == '=');
}

// Whether a blank stands between token `at` and the one before it; `had` is whether there is one now.
bool IsBlankBefore(TokenSpan tokens, std::size_t at, bool had) {
    const char before = tokens.SignAt(at - 1), sign = tokens.SignAt(at);
    if (sign == ',' || ClosesBracket(sign) || OpensBracket(before)) return false;
    if (before == ',' || sign == '|' || before == '|') return true;
    if (IsPair(tokens, at) || (Compares(sign) && Compares(before))) return had;
    if (IsPair(tokens, at - 1) || IsPair(tokens, at + 1)) return true;
    if (Compares(sign) || Compares(before)) return true;
    return had || IsBetweenOperands(tokens, at) || IsBetweenOperands(tokens, at - 1);
}

// Where each token begins in the code; none when they are not found one behind the other.
std::vector<std::size_t> PlacesOf(std::string_view code, const Tokens& tokens) {
    std::vector<std::size_t> places;
    std::size_t at = 0;
    for (const Token token : tokens) {
        at = code.find_first_not_of(blanks, at);
        if (at == std::string_view::npos || code.compare(at, token->text.size(), token->text) != 0) return {};
        places.push_back(at);
        at += token->text.size();
    }
    return places;
}

// The statement of the line that token `at` stands in. Behind an If, "|" parts what is in its branches.
std::size_t StatementBegin(const Tokens& tokens, std::size_t at) {
    while (at > 0 && tokens[at - 1]->sign != '|') --at;
    return at;
}

bool MeanTheSame(const Tokens& some, const Tokens& others) {
    if (some.size() != others.size()) return false;
    for (std::size_t i = 0; i < some.size(); ++i) {
        const bool isSame = some[i] == others[i] ||
                            (some[i]->keyword != Keyword::None && some[i]->keyword == others[i]->keyword);
        if (!isSame) return false;
    }
    return true;
}

}  // namespace

SplitLine PartsOf(std::string_view line) {
    const std::size_t comment = CommentStart(line);
    const std::string_view whole = line.substr(0, comment);
    const std::size_t first = whole.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {"", comment == std::string_view::npos ? std::string_view() : line.substr(comment)};
    const std::size_t end = whole.find_last_not_of(blanks) + 1;
    return {whole.substr(first, end - first),
            comment == std::string_view::npos ? std::string_view() : line.substr(end)};
}

std::string Spaced(std::string_view code, const Tokens& tokens, bool beginsStatement) {
    const std::vector<std::size_t> places = PlacesOf(code, tokens);
    if (places.size() != tokens.size()) return std::string(code);
    const TokenSpan all(tokens);
    std::string text;
    std::size_t end = 0;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const std::size_t begin = StatementBegin(tokens, i);
        if (i > 0 && IsBlankBefore(all, i, places[i] > end)) text += ' ';
        const bool isWhole = beginsStatement || begin > 0;
        text += isWhole ? SpellingAt(all.From(begin), i - begin) : std::string_view(tokens[i]->text);
        end = places[i] + tokens[i]->text.size();
    }
    return MeanTheSame(Cut(text), tokens) ? text : std::string(code);
}
