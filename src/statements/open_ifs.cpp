#include "statements/open_ifs.h"

#include <algorithm>
#include <vector>

#include "lexer/source_lines.h"
#include "statements/words.h"

namespace {

// What the Ifs of one statement come to.
struct IfStatement {
    std::size_t ownEndIf = noToken;
    bool opens = false;  // the last one is left open
};

IfStatement ReadIfs(TokenSpan tokens) {
    IfStatement found;
    int depth = 0;
    for (std::size_t at = 0; at < tokens.size(); ++at) {
        const Keyword word = tokens.KeywordAt(at);
        if (word == Keyword::EndIf && depth > 0 && --depth == 0) found.ownEndIf = at;
        if (word != Keyword::If || !BeginsStatement(tokens, at)) continue;
        const std::size_t then = tokens.Find(Keyword::Then, at);
        found.opens = depth == 0 && StaysOpen(tokens, then);
        if (depth++ == 0) found.ownEndIf = noToken;
    }
    return found;
}

// Walks over one file. Blocks are followed as far as it takes to tell which Ifs a later EndIf belongs to: one
// that nothing else needs goes to the last If with an EndIf of its own in the same block, or else in any block.
class Search {
public:
    StatementPlaces Run(const std::string& source) {
        SourceLines lines(Reading::Uses);
        lines.onInlineCpp = [this](const InlineLine& line) { inlineBraces += line.braces; };
        if (!lines.Open(source)) return {};
        while (lines.Next()) {
            std::size_t number = 0;
            for (const TokenSpan statement : lines.Statements()) Read(statement, {lines.Line(), number++});
        }
        return leftOpen;
    }

private:
    using Place = StatementPlaces::value_type;
    struct Candidate {
        Place place;
        std::size_t depth;
    };
    StatementPlaces leftOpen;
    int inlineBraces = 0;
    std::vector<Keyword> blocks;        // their openers, innermost last
    int openIfs = 0;                    // among them
    std::vector<Candidate> candidates;  // in blocks that are still open
    std::vector<Candidate> left;        // in others

    void Read(TokenSpan statement, const Place& place) {
        const Keyword word = statement.KeywordAt(0);
        switch (word) {
            case Keyword::Function:
            case Keyword::Method:
                blocks.clear();
                candidates.clear();
                left.clear();
                openIfs = inlineBraces = 0;
                break;
            case Keyword::If:
                ReadIf(ReadIfs(statement), place);
                break;
            case Keyword::EndIf:
                ReadEndIf();
                break;
            default:
                if (Has(word, trait::opensBlock)) blocks.push_back(word);
                if (Has(word, trait::closesBlock)) Close();
                break;
        }
    }

    void ReadIf(const IfStatement& read, const Place& place) {
        if (read.ownEndIf != noToken) candidates.push_back({place, blocks.size()});
        if (!read.opens) return;
        blocks.push_back(Keyword::If);
        ++openIfs;
    }

    void Close() {
        if (!blocks.empty()) blocks.pop_back();
        while (!candidates.empty() && candidates.back().depth > blocks.size()) {
            left.push_back(candidates.back());
            candidates.pop_back();
        }
    }

    void ReadEndIf() {
        if (openIfs > 0) {
            --openIfs;
            Close();
        } else if (inlineBraces > 0) {
            --inlineBraces;
        } else {
            std::vector<Candidate>& from = candidates.empty() ? left : candidates;
            if (from.empty()) return;
            leftOpen.insert(from.back().place);
            from.pop_back();
        }
    }
};

}  // namespace

bool BeginsStatement(TokenSpan line, std::size_t at) {
    if (at == 0 || line.SignAt(at - 1) == '|') return true;
    const Keyword before = line.KeywordAt(at - 1);
    return before == Keyword::Then || before == Keyword::Else;
}

bool StaysOpen(TokenSpan statement, std::size_t then) {
    if (then == noToken) return true;
    const TokenSpan rest = statement.From(then + 1);
    return std::all_of(rest.begin(), rest.end(), [](const std::string& token) { return Is(token, "|"); });
}

std::size_t OwnEndIf(TokenSpan statement) { return ReadIfs(statement).ownEndIf; }

StatementPlaces FindIfsLeftOpen(const std::string& source) { return Search().Run(source); }
