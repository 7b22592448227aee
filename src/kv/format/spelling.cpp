#include "kv/format/spelling.h"

namespace {

constexpr std::string_view spellings[] = {
    "",
#define ROW(name, traits, block) #name,
#include "base/keywords.inc"
#undef ROW
};

std::string_view SpellingOf(Keyword keyword) { return spellings[IndexOf(keyword)]; }

// Words of the language in lower case only.
bool IsAccessWord(Keyword keyword) { return keyword == Keyword::Public || keyword == Keyword::Private; }

// Words that begin statements, or what follows Then or Else.
bool BeginsStatements(Keyword keyword) {
    return keyword != Keyword::None && keyword < Keyword::As && !IsAccessWord(keyword);
}

// Operators between two operands.
bool IsOperator(Keyword keyword) {
    return Has(keyword, trait::operation) && keyword != Keyword::Not && keyword != Keyword::BitNot;
}

// Parts of the statement that its keyword opens.
bool BelongsTo(Keyword part, Keyword opening) {
    switch (part) {
        case Keyword::Then:
            return opening == Keyword::If || opening == Keyword::ElseIf;
        case Keyword::To:
        case Keyword::Step:
        case Keyword::EachIn:
            return opening == Keyword::For;
        case Keyword::In:
            return opening == Keyword::For || opening == Keyword::EachSeq;
        default:
            return false;
    }
}

}  // namespace

Keyword OpeningKeyword(TokenSpan statement) {
    const Keyword keyword = statement.KeywordAt(0);
    return BeginsStatements(keyword) && statement.SignAt(1) != '=' ? keyword : Keyword::None;
}

bool EndsOperand(TokenSpan statement, std::size_t at) {
    const Word& word = statement.At(at);
    if (word.sign != '\0') return ClosesBracket(word.sign);
    return at > 0 && (word.keyword == Keyword::None || Has(word.keyword, trait::value));
}

std::string_view SpellingAt(TokenSpan statement, std::size_t at) {
    const Word& word = statement.At(at);
    const Keyword opening = OpeningKeyword(statement);
    const Keyword before = at == 0 ? Keyword::None : statement.KeywordAt(at - 1);
    const bool beginsBranch = (before == Keyword::Then || before == Keyword::Else) && opening == Keyword::If;
    if (at == 0 ? opening != Keyword::None
                : beginsBranch && OpeningKeyword(statement.From(at)) != Keyword::None)
        return SpellingOf(word.keyword);
    if (opening == Keyword::For && at == 1 &&
        (word.keyword == Keyword::Local || word.keyword == Keyword::Each))
        return SpellingOf(word.keyword);
    if ((word.keyword == Keyword::Sequence && statement.KeywordAt(at + 1) == Keyword::Of) ||
        (word.keyword == Keyword::Of && before == Keyword::Sequence))
        return SpellingOf(word.keyword);
    const bool isPart = BelongsTo(word.keyword, opening) || IsOperator(word.keyword) ||
                        (word.keyword == Keyword::Else && opening == Keyword::If);
    const bool isBetween = at > 1 && EndsOperand(statement, at - 1) &&
                           (at + 1 < statement.size() || word.keyword == Keyword::Then);
    return isPart && isBetween ? SpellingOf(word.keyword) : std::string_view(word.text);
}
