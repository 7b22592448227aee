#include "kv/format/nesting.h"

#include <algorithm>

#include "kv/format/spelling.h"

namespace {

// What holds no statements that run, or those of a routine.
bool IsDeclaration(Keyword opener) { return Has(opener, trait::opens) && Has(opener, trait::collected); }

// What stands in no other block; a Method stands in a Type or Element.
bool IsOutermost(Keyword keyword) { return IsDeclaration(keyword) && keyword != Keyword::Method; }

bool Divides(Keyword keyword, Keyword block) {
    return Has(keyword, trait::divides) && BlockOf(keyword) == block;
}

}  // namespace

std::size_t Nesting::LeftBy(Keyword keyword) const {
    if (IsIn(Keyword::Extern) && keyword != Keyword::EndExtern) return open_.size();
    if (IsOutermost(keyword)) return 0;
    if (keyword == Keyword::Method) return std::min<std::size_t>(open_.size(), 1);
    const Keyword opener = Has(keyword, trait::divides) ? Keyword::None : BlockOf(keyword);
    if (opener == Keyword::None) return open_.size();
    const auto found = std::find(open_.rbegin(), open_.rend(), opener);
    if (IsDeclaration(opener)) {
        return found == open_.rend() ? open_.size() : static_cast<std::size_t>(open_.rend() - found) - 1;
    }
    // Closers may cross: each ends whatever is innermost.
    return open_.empty() || IsDeclaration(open_.back()) ? open_.size() : open_.size() - 1;
}

std::size_t Nesting::LevelOf(TokenSpan firstWords) const {
    const Keyword keyword = OpeningKeyword(firstWords);
    std::size_t left = LeftBy(keyword);
    const bool isInBlock = left > 0 && !IsDeclaration(open_[left - 1]);
    if (Divides(keyword, Keyword::If) && isInBlock) --left;
    // The statements of a Select stand one deeper than its labels.
    const auto end = open_.begin() + static_cast<std::ptrdiff_t>(left);
    std::size_t level = left + static_cast<std::size_t>(std::count(open_.begin(), end, Keyword::Select));
    if (Divides(keyword, Keyword::Select) && left > 0 && open_[left - 1] == Keyword::Select) --level;
    return level;
}

// An If stays open that has nothing behind its Then, or no Then; on one line the last one may be.
void Nesting::PassIf(TokenSpan statement) {
    std::size_t depth = 0;
    for (std::size_t at = 0; at < statement.size(); ++at) {
        const Keyword before = at == 0 ? Keyword::Then : statement.KeywordAt(at - 1);
        const bool begins =
            before == Keyword::Then || before == Keyword::Else || (at > 0 && statement.SignAt(at - 1) == '|');
        if (statement.KeywordAt(at) == Keyword::EndIf && begins && depth > 0) --depth;
        if (statement.KeywordAt(at) != Keyword::If || !begins) continue;
        const std::size_t then = statement.Find(Keyword::Then, at);
        if (then == noToken || then + 1 == statement.size()) ++depth;
    }
    open_.insert(open_.end(), depth, Keyword::If);
}

void Nesting::PassStatement(TokenSpan statement) {
    const Keyword keyword = OpeningKeyword(statement);
    if (IsIn(Keyword::Extern) && keyword != Keyword::EndExtern) return;
    open_.resize(LeftBy(keyword));
    if (keyword == Keyword::If) {
        PassIf(statement);
    } else if (Has(keyword, trait::opens)) {
        open_.push_back(keyword);
    }
}

void Nesting::Pass(const Tokens& line) {
    const TokenSpan all(line);
    std::size_t begin = 0;
    for (std::size_t at = 0; at < all.size(); ++at) {
        // The branches of an If reach to the end of the line.
        const TokenSpan rest = all.From(begin);
        if (OpeningKeyword(rest) == Keyword::If && rest.Find(Keyword::Then) != noToken) break;
        if (all.SignAt(at) != '|') continue;
        PassStatement(all.Slice(begin, at));
        begin = at + 1;
    }
    PassStatement(all.From(begin));
}
