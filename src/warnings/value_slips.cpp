// Slips about values: numbers that their types do not hold, results that nobody takes.
#include <algorithm>
#include <cmath>
#include <limits>

#include "analysis/effects.h"
#include "expressions/constants.h"
#include "expressions/walk.h"
#include "lexer/source_lines.h"
#include "warnings/slips.h"

namespace {

struct Range {
    Base base;
    double least, most;
};
const Range ranges[] = {
    {Base::Byte, 0, 255},
    {Base::Short, -32768, 32767},
    {Base::Int, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()},
};

bool Fits(const ValueType& type, double value) {
    return std::trunc(value) == value &&
           std::all_of(std::begin(ranges), std::end(ranges), [&](const Range& range) {
               return !type.Is(range.base) || (value >= range.least && value <= range.most);
           });
}

// The value where it is a number that does not fit.
TokenSpan Misfit(const ValueType& type, TokenSpan value) {
    if (type.Is(Base::Bool) || !type.IsInteger()) return {};
    const bool isSigned = value.SignAt(0) == '-';
    if (value.size() != (isSigned ? 2U : 1U) || !IsDigit(value[isSigned ? 1 : 0][0])) return {};
    const auto number = ConstantIn(value);
    return number && !Fits(type, number->AsReal()) ? value : TokenSpan();
}

// name:Type = value [, ...]
TokenSpan MisfitIn(TokenSpan declarations) {
    for (const TokenSpan part : declarations.SplitAt(',')) {
        if (part.SignAt(1) != ':' || part.SignAt(3) != '=' || !IsBasicType(part[2])) continue;
        const TokenSpan found = Misfit(ParseType(part[2]), part.From(4));
        if (!found.empty()) return found;
    }
    return {};
}

}  // namespace

// Local b:Byte = 300 ; b = 300 ; n = 2.5
TokenSpan ExceedsType(const Giving& giving) { return Misfit(giving.to, giving.value.source); }

// Function Draw(size:Byte = 300)
TokenSpan DefaultExceedsType(const State&, TokenSpan statement) {
    if (!Has(statement.KeywordAt(0), trait::routine)) return {};
    std::size_t parenthesis = 0;
    while (parenthesis < statement.size() && statement.SignAt(parenthesis) != '(') ++parenthesis;
    return parenthesis < statement.size() ? MisfitIn(statement.Inside(parenthesis)) : TokenSpan();
}

// Upper s, where nothing but what it gives tells that it has run
TokenSpan LosesResult(const CallStatement& statement) {
    const Expr& call = statement.call;
    const bool givesValue =
        call.kind == ExprKind::Call && call.routine != nullptr && !call.routine->result.Is(Base::Void);
    if (!givesValue || !ChangesNothing(EffectsOfRoutine(*call.routine))) return {};
    if (call.object != nullptr && !ChangesNothing(EffectsOf(call.object->source))) return {};
    for (const Expr& argument : PartsOf(call))
        if (argument.given && !ChangesNothing(EffectsOf(argument.source))) return {};
    return statement.tokens;
}
