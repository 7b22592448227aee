#include "warnings/operations.h"

#include <iterator>

#include "lexer/holes.h"

namespace {

// Deeper in brackets and signs nothing is read: the translation refuses it, too.
const int deepest = 250;
int depth = 0;

struct Deeper {
    Deeper() { ++depth; }
    ~Deeper() { --depth; }
    Deeper(const Deeper&) = delete;
    Deeper& operator=(const Deeper&) = delete;
};

// What has no shape that it knows is left alone: whoever translates it has the word.
class OperationReader {
public:
    OperationReader(TokenSpan tokens, const VisitOperation& visitor)
        : walk(tokens, ExprMode::Condition), visit(visitor) {}

    void Read() {
        if (!walk.Done()) Binary(Level::Assignment);
    }

private:
    Walk walk;
    const VisitOperation& visit;
    bool lost = false;

    TokenSpan From(std::size_t begin) const { return walk.tokens.Slice(begin, walk.at); }

    void Inside() {
        for (const TokenSpan part : walk.tokens.Inside(walk.at).SplitAt(','))
            OperationReader(part, visit).Read();
        walk.at = walk.tokens.Behind(walk.at);
    }

    void Holes(const Word& literal) {
        for (const StringPiece& piece : PiecesOf(literal))
            if (piece.kind == StringPiece::Kind::Hole) OperationReader(piece.tokens, visit).Read();
    }

    void Primary() {
        const bool isPair = walk.PeekKeyword() == Keyword::Create || walk.PeekKeyword() == Keyword::New;
        if (OpensBracket(walk.PeekSign())) return Inside();
        if (walk.Done() || walk.PeekSign() != '\0') {
            lost = walk.PeekSign() != '$';
            ++walk.at;
            return;
        }
        if (HasHoles(walk.tokens.At(walk.at))) Holes(walk.tokens.At(walk.at));
        walk.at += isPair ? 2 : 1;
    }

    void Postfix() {
        while (!walk.Done()) {
            if (OpensBracket(walk.PeekSign()))
                Inside();
            else if (BeginsPostfix(walk.PeekSign()) || walk.PeekSign() == ':')
                walk.at += 2;
            else
                return;
        }
    }

    Term Operand() {
        const Deeper deeper;
        const std::size_t begin = walk.at;
        lost = lost || depth > deepest;
        if (lost) return {};
        if (const UnaryOperator* op = PeekUnary(walk)) {
            ++walk.at;
            Operand();
            return {From(begin), nullptr, op->kind == UnaryKind::Not};
        }
        Primary();
        Postfix();
        return {From(begin)};
    }

    Term Binary(Level weakest) {
        const std::size_t begin = walk.at;
        Term left = Operand();
        std::size_t length = 0;
        while (!lost && !walk.Done()) {
            const BinaryOperator* op = PeekBinary(walk, true, length);
            if (op == nullptr || op->level > weakest) break;
            const TokenSpan sign = walk.tokens.Slice(walk.at, walk.at + length);
            walk.at += length;
            const Term right = Binary(static_cast<Level>(static_cast<int>(op->level) - 1));
            if (lost) break;
            visit({op, sign, left, right});
            left = {From(begin), op};
        }
        return left;
    }
};

void Read(TokenSpan tokens, const VisitOperation& visit) {
    for (const TokenSpan part : tokens.SplitAt(',')) OperationReader(part, visit).Read();
}

void ReadValues(TokenSpan declarations, const VisitOperation& visit) {
    for (const TokenSpan part : declarations.SplitAt(',')) {
        const std::size_t equals = FindEquals(part);
        if (equals != noToken) Read(part.From(equals + 1), visit);
    }
}

// The branches of an If on one line are statements of their own.
void ReadConditions(TokenSpan statement, const VisitOperation& visit) {
    for (std::size_t i = 0; i < statement.size(); ++i) {
        if (statement.KeywordAt(i) != Keyword::If && statement.KeywordAt(i) != Keyword::ElseIf) continue;
        const std::size_t then = statement.Find(Keyword::Then, i);
        Read(statement.Slice(i + 1, then), visit);
        if (then == noToken) return;
        i = then;
    }
}

void ReadItems(TokenSpan items, const VisitOperation& visit) {
    std::size_t begin = 0;
    for (std::size_t i = 0; i < items.size(); i = items.Behind(i)) {
        if (items.SignAt(i) != '&') continue;
        if (items.SignAt(i + 1) == '&') {
            ++i;
            continue;
        }
        Read(items.Slice(begin, i), visit);
        begin = i + 1;
    }
    Read(items.From(begin), visit);
}

void ReadCounting(TokenSpan statement, const VisitOperation& visit) {
    const std::size_t equals = FindEquals(statement);
    const std::size_t to = statement.Find(Keyword::To);
    if (equals == noToken || to == noToken || to < equals) return;
    const std::size_t step = statement.Find(Keyword::Step, to);
    Read(statement.Slice(equals + 1, to), visit);
    Read(statement.Slice(to + 1, step), visit);
    if (step != noToken) Read(statement.From(step + 1), visit);
}

}  // namespace

std::size_t FindEquals(TokenSpan tokens, std::size_t from) {
    for (std::size_t i = from; i < tokens.size(); i = tokens.Behind(i)) {
        if (tokens.SignAt(i) != '=') continue;
        if (tokens.SignAt(i + 1) == '=') {
            ++i;
            continue;
        }
        const char before = i == 0 ? '\0' : tokens.SignAt(i - 1);
        if (before != '<' && before != '>' && before != '!') return i;
    }
    return noToken;
}

void VisitOperations(TokenSpan statement, const VisitOperation& visit) {
    switch (statement.KeywordAt(0)) {
        case Keyword::If:
        case Keyword::ElseIf:
            return ReadConditions(statement, visit);
        case Keyword::Local:
        case Keyword::Global:
        case Keyword::Const:
        case Keyword::Field:
            return ReadValues(statement.From(1), visit);
        case Keyword::For:
            return ReadCounting(statement, visit);
        case Keyword::Print:
            return ReadItems(statement.From(1), visit);
        case Keyword::None: {
            const std::size_t equals = FindEquals(statement);
            Read(statement.Slice(0, equals), visit);
            if (equals != noToken) Read(statement.From(equals + 1), visit);
            return;
        }
        default:
            if (!Has(statement.KeywordAt(0), trait::declares)) Read(statement.From(1), visit);
    }
}
