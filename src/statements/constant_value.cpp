// A small descent over operands and the operators of the table below; what binds tighter comes first.
#include "statements/constant_value.h"

#include <climits>
#include <cstdlib>

#include "statements/words.h"
#include "symbols/symbols.h"

namespace {

using Value = std::optional<ConstantValue>;

constexpr int deepest = 1000;  // Consts that name Consts, and nested parentheses

struct Cursor {
    TokenSpan tokens;
    std::size_t at = 0;
    int depth = 0;
};

Value Integer(long long value) {
    ConstantValue result;
    result.integer = value;
    return result;
}

Value Real(double value) {
    ConstantValue result;
    result.kind = ConstantValue::Kind::Real;
    result.real = value;
    return result;
}

long long Wrapped(unsigned long long value) { return static_cast<long long>(value); }

// C++ takes no shift that loses digits as a constant.
Value Shifted(char operation, long long a, long long b) {
    if (a < 0 || b < 0 || b > 62) return {};
    if (operation == '>') return Integer(a >> b);
    const long long most = a > INT_MAX ? LLONG_MAX : INT_MAX;
    return a > most >> b ? Value() : Integer(a << b);
}

Value IntegerResult(char operation, long long a, long long b) {
    const auto ua = static_cast<unsigned long long>(a);
    const auto ub = static_cast<unsigned long long>(b);
    switch (operation) {
        case '+':
            return Integer(Wrapped(ua + ub));
        case '-':
            return Integer(Wrapped(ua - ub));
        case '*':
            return Integer(Wrapped(ua * ub));
        case '<':
        case '>':
            return Shifted(operation, a, b);
        case '&':
            return Integer(Wrapped(ua & ub));
        case '^':
            return Integer(Wrapped(ua ^ ub));
        case '|':
            return Integer(Wrapped(ua | ub));
        default:
            break;
    }
    if (b == 0) return {};
    if (b == -1) return Integer(operation == '/' ? Wrapped(0ULL - ua) : 0);
    return Integer(operation == '/' ? a / b : a % b);
}

Value RealResult(char operation, double a, double b) {
    switch (operation) {
        case '+':
            return Real(a + b);
        case '-':
            return Real(a - b);
        case '*':
            return Real(a * b);
        case '/':
            return b == 0 ? Value() : Real(a / b);
        default:
            return {};
    }
}

Value Combine(char operation, const Value& a, const Value& b) {
    if (!a || !b) return {};
    const auto text = ConstantValue::Kind::Text;
    if (a->kind == text || b->kind == text) {
        if (a->kind != b->kind || operation != '+') return {};
        ConstantValue joined = *a;
        joined.text += b->text;
        return joined;
    }
    if (a->kind == ConstantValue::Kind::Integer && b->kind == ConstantValue::Kind::Integer)
        return IntegerResult(operation, a->integer, b->integer);
    return RealResult(operation, a->AsReal(), b->AsReal());
}

Value Number(const std::string& token) {
    if (token[0] == '$') return Integer(Wrapped(std::strtoull(token.c_str() + 1, nullptr, 16)));
    if (token.find_first_not_of("0123456789.") != std::string::npos) return {};
    if (token.find('.') != std::string::npos) return Real(std::strtod(token.c_str(), nullptr));
    if (token.size() > 18) return {};
    return Integer(std::strtoll(token.c_str(), nullptr, 10));
}

struct Operation {
    std::string_view word;
    char sign;
    int level;
};

constexpr int loosest = 6;
const Operation operations[] = {
    {"*", '*', 1},   {"/", '/', 1},   {"mod", '%', 1},    {"+", '+', 2},      {"-", '-', 2},
    {"shl", '<', 3}, {"shr", '>', 3}, {"bitand", '&', 4}, {"bitxor", '^', 5}, {"bitor", '|', loosest},
};

const Operation* FindOperation(const std::string& token) {
    for (const Operation& operation : operations)
        if (IsWord(token, operation.word)) return &operation;
    return nullptr;
}

Value Binary(Cursor& cursor, int level);

Value ConstNamed(const std::string& name, int depth) {
    const Variable* found = FindGlobal(name);
    if (found == nullptr || !found->isConst || depth > deepest) return {};
    Cursor inner{TokenSpan(found->initialiser), 0, depth + 1};
    Value value = Binary(inner, loosest);
    if (!value || inner.at != inner.tokens.size() || value->kind == ConstantValue::Kind::Text) return value;
    if (found->type.Is(Base::Double)) return Real(value->AsReal());
    if (value->kind == ConstantValue::Kind::Real) return Integer(static_cast<long long>(value->real));
    return value;
}

Value Factor(Cursor& cursor) {
    const std::string& token = cursor.tokens[cursor.at];
    if (token.empty() || ++cursor.depth > deepest) return {};
    ++cursor.at;
    if (Is(token, "-")) return Combine('-', Integer(0), Factor(cursor));
    if (Is(token, "+")) return Factor(cursor);
    if (IsWord(token, "bitnot")) return Combine('^', Integer(-1), Factor(cursor));
    if (Is(token, "(")) {
        Value inner = Binary(cursor, loosest);
        return Is(cursor.tokens[cursor.at++], ")") ? inner : Value();
    }
    if (token[0] == '"') {
        ConstantValue text;
        text.kind = ConstantValue::Kind::Text;
        text.text = token.size() > 1 ? token.substr(1, token.size() - 2) : "";
        return text;
    }
    if (Is(token, ".")) return Number("." + cursor.tokens[cursor.at++]);
    if (IsWord(token, "true")) return Integer(1);
    if (IsWord(token, "false")) return Integer(0);
    if (token[0] == '$' || IsDigit(token[0])) return Number(token);
    return ConstNamed(token, cursor.depth);
}

Value Binary(Cursor& cursor, int level) {
    Value value = Factor(cursor);
    const Operation* operation = FindOperation(cursor.tokens[cursor.at]);
    while (operation != nullptr && operation->level <= level) {
        ++cursor.at;
        value = Combine(operation->sign, value, Binary(cursor, operation->level - 1));
        operation = FindOperation(cursor.tokens[cursor.at]);
    }
    return value;
}

}  // namespace

std::optional<ConstantValue> EvaluateConstant(TokenSpan tokens) {
    Cursor cursor{tokens, 0, 0};
    Value value = Binary(cursor, loosest);
    return cursor.at == tokens.size() ? value : Value();
}
