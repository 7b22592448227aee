#include "expressions/operators.h"

#include <unordered_map>

#include "lexer/lexer.h"

namespace {

struct SymbolRow {
    const char* first;
    const char* second;  // empty for operators of one token
    BinaryOperator op;
};

// Rows with a second token come before the row that is their beginning. "=" and "= =" are looked at apart.
const SymbolRow symbolRows[] = {
    {"+", "", {"+", "+", Level::Sum, OperatorKind::Add}},
    {"-", "", {"-", "-", Level::Sum, OperatorKind::Arithmetic}},
    {"*", "", {"*", "*", Level::Product, OperatorKind::Arithmetic}},
    {"/", "", {"/", "/", Level::Product, OperatorKind::Divide}},
    {"%", "", {"%", "Mod", Level::Product, OperatorKind::Remainder}},
    {"<", "=", {"<=", "<=", Level::Relation, OperatorKind::Order}},
    {"<", ">", {"!=", "<>", Level::Equality, OperatorKind::Equality}},
    {"<", "", {"<", "<", Level::Relation, OperatorKind::Order}},
    {">", "=", {">=", ">=", Level::Relation, OperatorKind::Order}},
    {">", "", {">", ">", Level::Relation, OperatorKind::Order}},
    {"!", "=", {"!=", "<>", Level::Equality, OperatorKind::Equality}},
    {"&", "&", {"&&", "And", Level::And, OperatorKind::Logic}},
    {"&", "", {"&", "BitAnd", Level::BitAnd, OperatorKind::Bits}},
    {"|", "|", {"||", "Or", Level::Or, OperatorKind::Logic}},
    {"|", "", {"|", "BitOr", Level::BitOr, OperatorKind::Bits}},
    {"^", "", {"^", "BitXor", Level::BitXor, OperatorKind::Bits}},
};

const BinaryOperator equals = {"==", "=", Level::Equality, OperatorKind::Equality};

const std::unordered_map<std::string, BinaryOperator> binaryWords = {
    {"mod", {"%", "Mod", Level::Product, OperatorKind::Remainder}},
    {"shl", {"<<", "Shl", Level::Shift, OperatorKind::Bits}},
    {"shr", {">>", "Shr", Level::Shift, OperatorKind::Bits}},
    {"bitand", {"&", "BitAnd", Level::BitAnd, OperatorKind::Bits}},
    {"bitxor", {"^", "BitXor", Level::BitXor, OperatorKind::Bits}},
    {"bitor", {"|", "BitOr", Level::BitOr, OperatorKind::Bits}},
    {"and", {"&&", "And", Level::And, OperatorKind::Logic}},
    {"or", {"||", "Or", Level::Or, OperatorKind::Logic}},
};

const std::unordered_map<std::string, UnaryOperator> unaryWords = {
    {"-", {"-", "-", UnaryKind::Sign}},
    {"+", {"+", "+", UnaryKind::Sign}},
    {"!", {"!", "Not", UnaryKind::Not}},
    {"not", {"!", "Not", UnaryKind::Not}},
    {"~", {"~", "BitNot", UnaryKind::Complement}},
    {"bitnot", {"~", "BitNot", UnaryKind::Complement}},
};

constexpr std::size_t longestWord = 6;

const BinaryOperator* PeekEquals(const Walk& walk, bool comparing, std::size_t& length) {
    const bool doubled = walk.Peek(1) == "=";
    length = doubled ? 2 : 1;
    return doubled || comparing ? &equals : nullptr;
}

}  // namespace

const BinaryOperator* PeekBinary(const Walk& walk, bool comparing, std::size_t& length) {
    const std::string& token = walk.Peek();
    if (token.empty() || token.size() > longestWord) return nullptr;
    if (token == "=") return PeekEquals(walk, comparing, length);
    if (token.size() > 1) {
        const auto word = binaryWords.find(Lower(token));
        length = 1;
        return word == binaryWords.end() ? nullptr : &word->second;
    }
    for (const SymbolRow& row : symbolRows) {
        if (token[0] != row.first[0]) continue;
        if (row.second[0] != '\0' && walk.Peek(1) != row.second) continue;
        length = row.second[0] == '\0' ? 1 : 2;
        return &row.op;
    }
    return nullptr;
}

const UnaryOperator* PeekUnary(const Walk& walk) {
    const std::string& token = walk.Peek();
    if (token.empty() || token.size() > longestWord) return nullptr;
    const auto word = unaryWords.find(Lower(token));
    return word == unaryWords.end() ? nullptr : &word->second;
}

bool IsOperatorWord(const std::string& lowerName) {
    return binaryWords.count(lowerName) != 0 || unaryWords.count(lowerName) != 0;
}
