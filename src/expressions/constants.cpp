#include "expressions/constants.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <unordered_map>
#include <utility>

#include "base/journal.h"
#include "base/run.h"
#include "expressions/expression.h"
#include "expressions/operators.h"
#include "expressions/walk.h"
#include "symbols/scopes.h"

namespace {

using Value = std::optional<ConstantValue>;

constexpr int deepest = 1000;  // Consts that name Consts
int depth = 0;
std::unordered_map<const Variable*, Value> valuesOfConsts;
const PartOfRun partOfRun(depth, valuesOfConsts);

Value Integer(long long value, bool toCpp = true) {
    ConstantValue result;
    result.integer = value;
    result.toCpp = toCpp;
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

Value Combined(char operation, const ConstantValue& a, const ConstantValue& b) {
    const auto text = ConstantValue::Kind::Text;
    if (a.kind == text || b.kind == text) {
        if (a.kind != b.kind || operation != '+') return {};
        ConstantValue joined = a;
        joined.text += b.text;
        return joined;
    }
    if (a.kind == ConstantValue::Kind::Integer && b.kind == ConstantValue::Kind::Integer)
        return IntegerResult(operation, a.integer, b.integer);
    return RealResult(operation, a.AsReal(), b.AsReal());
}

Value Combine(char operation, const Value& a, const Value& b) {
    if (!a || !b) return {};
    Value result = Combined(operation, *a, *b);
    if (result) result->toCpp = a->toCpp && b->toCpp;
    return result;
}

Value Number(const Expr& number) {
    const std::string hexadecimal = HexadecimalDigits(number);
    if (!hexadecimal.empty()) return Integer(Wrapped(std::strtoull(hexadecimal.c_str(), nullptr, 16)));
    const char* text = number.word->text.c_str();
    return number.type.Is(Base::Double) ? Real(std::strtod(text, nullptr))
                                        : Integer(std::strtoll(text, nullptr, 10));
}

Value Text(const std::string& literal) {
    ConstantValue text;
    text.kind = ConstantValue::Kind::Text;
    text.text = Unquoted(literal);
    return text;
}

long long Narrowed(const ValueType& type, long long value) {
    if (type.Is(Base::Int)) return static_cast<std::int32_t>(value);
    if (type.Is(Base::Short)) return static_cast<std::int16_t>(value);
    if (type.Is(Base::Byte)) return static_cast<std::uint8_t>(value);
    return value;
}

// What an operation yields is cut off to its type. To C++ that is no constant.
Value CutOff(const ValueType& type, Value value) {
    if (!value || value->kind != ConstantValue::Kind::Integer) return value;
    const long long narrowed = Narrowed(type, value->integer);
    return Integer(narrowed, value->toCpp && narrowed == value->integer);
}

bool IsText(const ConstantValue& value) { return value.kind == ConstantValue::Kind::Text; }

bool IsWhole(const ConstantValue& value) { return value.kind == ConstantValue::Kind::Integer; }

// C++ takes no Double Const as a constant, so what comes of Doubles is written out.
Value Negated(const Value& value) {
    if (!value || IsText(*value)) return {};
    return Integer(value->AsReal() == 0 ? 1 : 0, value->toCpp && IsWhole(*value));
}

template <class Number>
bool Holds(const std::string& comparison, Number a, Number b) {
    if (comparison == "==") return a == b;
    if (comparison == "!=") return a != b;
    if (comparison == "<") return a < b;
    if (comparison == "<=") return a <= b;
    return comparison == ">" ? a > b : a >= b;
}

// What a comparison or a logical operation yields. Texts have escapes, and are compared where the program runs.
Value Truth(const BinaryOperator& op, const Value& a, const Value& b) {
    if (!a || !b || IsText(*a) || IsText(*b)) return {};
    const bool bothHold = a->AsReal() != 0 && b->AsReal() != 0,
               oneHolds = a->AsReal() != 0 || b->AsReal() != 0;
    const bool areWhole = IsWhole(*a) && IsWhole(*b);
    const bool holds = op.level == Level::And  ? bothHold
                       : op.level == Level::Or ? oneHolds
                       : areWhole              ? Holds(op.text, a->integer, b->integer)
                                               : Holds(op.text, a->AsReal(), b->AsReal());
    return Integer(holds ? 1 : 0, a->toCpp && b->toCpp && areWhole);
}

Value Signed(char sign, const Expr& operand) {
    if (sign == '!') return Negated(ConstantOf(operand));
    if (sign == '~') return Combine('^', Integer(-1), ConstantOf(operand));
    return Combine(sign, Integer(0), ConstantOf(operand));
}

Value Result(const Expr& operation) {
    const BinaryOperator& op = *operation.operation;
    const Value left = ConstantOf(*operation.first);
    if (!left) return left;
    const Value right = ConstantOf(*operation.first->next);
    if (IsComparison(&op) || op.kind == OperatorKind::Logic) return Truth(op, left, right);
    return CutOff(operation.type, Combine(op.text[0], left, right));
}

Value Checked(Value value) {
    if (value) value->toCpp = false;
    return value;
}

Value Joined(const Expr& sum) {
    Value text = Text("");
    for (const Expr& part : PartsOf(sum)) text = text ? Combine('+', text, ConstantOf(part)) : text;
    return text;
}

// What the variable makes of its value.
Value Converted(const Variable& variable, Value value) {
    if (!value || value->kind == ConstantValue::Kind::Text) return value;
    if (variable.type.Is(Base::Bool)) return Integer(value->AsReal() != 0 ? 1 : 0, value->toCpp);
    if (variable.type.Is(Base::Double)) {
        value->real = value->AsReal();
        value->kind = ConstantValue::Kind::Real;
        return value;
    }
    if (value->kind == ConstantValue::Kind::Real) {
        const double whole = std::trunc(value->real);
        if (!(std::fabs(whole) < 9e18)) return {};
        value = Integer(static_cast<long long>(whole), value->toCpp);
        // C++ knows no value for what does not fit.
        if (Narrowed(variable.type, value->integer) != value->integer) return {};
    }
    value->integer = Narrowed(variable.type, value->integer);
    return value;
}

Value OfConst(const Variable& variable) {
    if (!variable.isConst || variable.initialiser.empty()) return {};
    const auto [found, isNew] = valuesOfConsts.emplace(&variable, Value());
    Value& value = found->second;  // stays where it is when others are added
    if (isNew && depth < deepest) {
        ++depth;
        value = Converted(variable, ConstantIn(variable.initialiser));
        --depth;
    }
    return value;
}

// Names of anything but Consts have no value yet; most are those of Locals, which are no names of the file.
bool NamesConstsOnly(TokenSpan tokens) {
    return std::all_of(tokens.first, tokens.last, [](Token token) {
        return token->keyword != Keyword::None || !IsIdentifier(token->text) || symbols.constants.Has(token);
    });
}

}  // namespace

Value ConstantOf(const Expr& expr) {
    switch (expr.kind) {
        case ExprKind::Number:
            return Number(expr);
        case ExprKind::Text:
            return Text(expr.word->text);
        case ExprKind::Fixed:
            return expr.type.Is(Base::Bool) ? Integer(expr.text[0] == 't' ? 1 : 0) : Value();
        case ExprKind::Name:
            return OfConst(*expr.variable);
        case ExprKind::Parentheses:
            return ConstantOf(*expr.first);
        case ExprKind::Sign:
            return CutOff(expr.type, Signed(expr.text[0], *expr.first));
        case ExprKind::Quotient:
            return Checked(Result(expr));
        case ExprKind::Operation:
        case ExprKind::Remainder:
            return Result(expr);
        case ExprKind::Sum:
            return Joined(expr);
        default:
            return {};
    }
}

Value ConstantIn(TokenSpan tokens) {
    if (!NamesConstsOnly(tokens)) return {};
    const BorrowedNodes nodes;
    const FileLevelNames names;
    Chapter untold;
    const OpenChapter nothingIsSaid(untold);
    Value value;
    const auto watch = std::exchange(watches, {});
    try {
        value = ConstantOf(TranslateExpression(tokens, ExprMode::Condition));
    } catch (const Stop&) {  // no value
    }
    watches = watch;
    return value;
}

std::optional<long long> IntegerOf(const Value& value) {
    if (!value || value->kind != ConstantValue::Kind::Integer) return {};
    return value->integer;
}

void SettleConstant(const std::string& name) {
    if (const Variable* constant = symbols.constants.Find(name)) OfConst(*constant);
}
