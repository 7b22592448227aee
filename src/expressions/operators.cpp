#include "expressions/operators.h"

#include <array>
#include <iterator>

namespace {

struct SymbolRow {
    char first;
    char second;  // 0 for operators of one token
    BinaryOperator op;
};

// Rows of one sign stand together, those with a second one before the row that is their beginning. "=" and "= ="
// are looked at apart.
const SymbolRow symbolRows[] = {
    {'+', 0, {"+", "+", Level::Sum, OperatorKind::Add}},
    {'-', 0, {"-", "-", Level::Sum, OperatorKind::Arithmetic}},
    {'*', 0, {"*", "*", Level::Product, OperatorKind::Arithmetic}},
    {'/', 0, {"/", "/", Level::Product, OperatorKind::Divide}},
    {'%', 0, {"%", "Mod", Level::Product, OperatorKind::Remainder}},
    {'<', '=', {"<=", "<=", Level::Relation, OperatorKind::Order}},
    {'<', '>', {"!=", "<>", Level::Equality, OperatorKind::Equality}},
    {'<', 0, {"<", "<", Level::Relation, OperatorKind::Order}},
    {'>', '=', {">=", ">=", Level::Relation, OperatorKind::Order}},
    {'>', 0, {">", ">", Level::Relation, OperatorKind::Order}},
    {'!', '=', {"!=", "<>", Level::Equality, OperatorKind::Equality}},
    {'&', '&', {"&&", "And", Level::And, OperatorKind::Logic}},
    {'&', 0, {"&", "BitAnd", Level::BitAnd, OperatorKind::Bits}},
    {'|', '|', {"||", "Or", Level::Or, OperatorKind::Logic}},
    {'|', 0, {"|", "BitOr", Level::BitOr, OperatorKind::Bits}},
    {'^', 0, {"^", "BitXor", Level::BitXor, OperatorKind::Bits}},
};

const BinaryOperator equals = {"==", "=", Level::Equality, OperatorKind::Equality};

struct BinaryWord {
    Keyword word;
    BinaryOperator op;
};

const BinaryWord binaryWords[] = {
    {Keyword::Mod, {"%", "Mod", Level::Product, OperatorKind::Remainder}},
    {Keyword::Shl, {"<<", "Shl", Level::Shift, OperatorKind::Bits}},
    {Keyword::Shr, {">>", "Shr", Level::Shift, OperatorKind::Bits}},
    {Keyword::BitAnd, {"&", "BitAnd", Level::BitAnd, OperatorKind::Bits}},
    {Keyword::BitXor, {"^", "BitXor", Level::BitXor, OperatorKind::Bits}},
    {Keyword::BitOr, {"|", "BitOr", Level::BitOr, OperatorKind::Bits}},
    {Keyword::And, {"&&", "And", Level::And, OperatorKind::Logic}},
    {Keyword::Or, {"||", "Or", Level::Or, OperatorKind::Logic}},
};

struct UnaryRow {
    char sign;
    Keyword word;
    UnaryOperator op;
};

const UnaryRow unaryRows[] = {
    {'-', Keyword::None, {"-", "-", UnaryKind::Sign}},
    {'+', Keyword::None, {"+", "+", UnaryKind::Sign}},
    {'!', Keyword::Not, {"!", "Not", UnaryKind::Not}},
    {'~', Keyword::BitNot, {"~", "BitNot", UnaryKind::Complement}},
};

// The first row of each sign; the end of the rows for any other.
const SymbolRow* RowsOf(char sign) {
    static const auto index = [] {
        std::array<const SymbolRow*, 256> rows{};
        rows.fill(std::end(symbolRows));
        for (const SymbolRow* row = std::end(symbolRows); row-- != std::begin(symbolRows);)
            rows[static_cast<unsigned char>(row->first)] = row;
        return rows;
    }();
    return index[static_cast<unsigned char>(sign)];
}

const BinaryOperator* FindBinary(Keyword word) {
    for (const BinaryWord& row : binaryWords)
        if (row.word == word) return &row.op;
    return nullptr;
}

const UnaryOperator* FindUnary(Keyword word) {
    for (const UnaryRow& row : unaryRows)
        if (row.word == word) return &row.op;
    return nullptr;
}

const BinaryOperator* PeekEquals(const Walk& walk, bool comparing, std::size_t& length) {
    const bool doubled = walk.PeekSign(1) == '=';
    length = doubled ? 2 : 1;
    return doubled || comparing ? &equals : nullptr;
}

}  // namespace

const BinaryOperator* PeekBinary(const Walk& walk, bool comparing, std::size_t& length) {
    const char sign = walk.PeekSign();
    if (sign == '\0') {
        length = 1;
        return Has(walk.PeekKeyword(), trait::operation) ? FindBinary(walk.PeekKeyword()) : nullptr;
    }
    if (sign == '=') return PeekEquals(walk, comparing, length);
    for (const SymbolRow* row = RowsOf(sign); row != std::end(symbolRows) && row->first == sign; ++row) {
        if (row->second != '\0' && walk.PeekSign(1) != row->second) continue;
        length = row->second == '\0' ? 1 : 2;
        return &row->op;
    }
    return nullptr;
}

const UnaryOperator* PeekUnary(const Walk& walk) {
    const char sign = walk.PeekSign();
    if (sign == '\0')
        return Has(walk.PeekKeyword(), trait::operation) ? FindUnary(walk.PeekKeyword()) : nullptr;
    for (const UnaryRow& row : unaryRows)
        if (row.sign == sign) return &row.op;
    return nullptr;
}
