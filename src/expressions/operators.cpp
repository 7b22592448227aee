#include "expressions/operators.h"

#include <string_view>

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

struct BinaryWord {
    std::string_view word;
    BinaryOperator op;
};

const BinaryWord binaryWords[] = {
    {"mod", {"%", "Mod", Level::Product, OperatorKind::Remainder}},
    {"shl", {"<<", "Shl", Level::Shift, OperatorKind::Bits}},
    {"shr", {">>", "Shr", Level::Shift, OperatorKind::Bits}},
    {"bitand", {"&", "BitAnd", Level::BitAnd, OperatorKind::Bits}},
    {"bitxor", {"^", "BitXor", Level::BitXor, OperatorKind::Bits}},
    {"bitor", {"|", "BitOr", Level::BitOr, OperatorKind::Bits}},
    {"and", {"&&", "And", Level::And, OperatorKind::Logic}},
    {"or", {"||", "Or", Level::Or, OperatorKind::Logic}},
};

struct UnaryWord {
    std::string_view word;
    UnaryOperator op;
};

const UnaryWord unaryWords[] = {
    {"-", {"-", "-", UnaryKind::Sign}},
    {"+", {"+", "+", UnaryKind::Sign}},
    {"!", {"!", "Not", UnaryKind::Not}},
    {"not", {"!", "Not", UnaryKind::Not}},
    {"~", {"~", "BitNot", UnaryKind::Complement}},
    {"bitnot", {"~", "BitNot", UnaryKind::Complement}},
};

constexpr std::size_t longestWord = 6;

// The operator of the row whose word the token is; null without one.
template <typename Rows>
auto FindWord(const Rows& rows, std::string_view token) -> decltype(&rows[0].op) {
    for (const auto& row : rows)
        if (IsWord(token, row.word)) return &row.op;
    return nullptr;
}

const BinaryOperator* PeekEquals(const Walk& walk, bool comparing, std::size_t& length) {
    const bool doubled = Is(walk.Peek(1), "=");
    length = doubled ? 2 : 1;
    return doubled || comparing ? &equals : nullptr;
}

}  // namespace

const BinaryOperator* PeekBinary(const Walk& walk, bool comparing, std::size_t& length) {
    const std::string& token = walk.Peek();
    if (token.empty() || token.size() > longestWord) return nullptr;
    if (Is(token, "=")) return PeekEquals(walk, comparing, length);
    if (token.size() > 1) {
        length = 1;
        return FindWord(binaryWords, token);
    }
    for (const SymbolRow& row : symbolRows) {
        if (token[0] != row.first[0]) continue;
        if (row.second[0] != '\0' && !Is(walk.Peek(1), row.second)) continue;
        length = row.second[0] == '\0' ? 1 : 2;
        return &row.op;
    }
    return nullptr;
}

const UnaryOperator* PeekUnary(const Walk& walk) {
    const std::string& token = walk.Peek();
    if (token.empty() || token.size() > longestWord) return nullptr;
    return FindWord(unaryWords, token);
}

bool IsOperatorWord(const std::string& lowerName) {
    return FindWord(binaryWords, lowerName) != nullptr || FindWord(unaryWords, lowerName) != nullptr;
}
