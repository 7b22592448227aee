#include "expressions/in_order.h"

#include "analysis/effects.h"
#include "symbols/scopes.h"

namespace {

// What a lambda takes along: in the initial value of a Field that is the object, outside of classes nothing.
const char* Capture() {
    if (InsideRoutine()) return "[&]";
    return currentClass != nullptr && !FileLevelNames::InForce() ? "[this]" : "[]";
}

std::vector<const Expr*> PointersTo(const std::vector<Expr>& expressions) {
    std::vector<const Expr*> pointers;
    pointers.reserve(expressions.size());
    for (const Expr& expr : expressions) pointers.push_back(&expr);
    return pointers;
}

bool IsOrderSeen(const std::vector<const Expr*>& expressions) {
    bool effects = false;
    std::vector<TokenSpan> pieces;
    pieces.reserve(expressions.size());
    for (const Expr* expr : expressions) {
        effects = effects || expr->effects;
        pieces.push_back(expr->source);
    }
    return effects && pieces.size() > 1 && OrderCanBeSeen(pieces);
}

}  // namespace

// What owns memory is handed on, not copied.
std::string InOrder::Name(const ValueType& type, const std::string& text) {
    const std::string name = "__kv" + std::to_string(count++);
    values += CppName(type) + " " + name + " = " + text + "; ";
    const bool owns = type.Is(Base::String) || type.Is(Base::Element);
    return owns ? "std::move(" + name + ")" : name;
}

std::string InOrder::NameObject(const std::string& text) {
    values += "auto&& __kvObject = " + text + "; ";
    return "__kvObject";
}

std::string InOrder::Text(const std::string& resultCppType, const std::string& call) const {
    ++lambdaCount;
    return std::string(Capture()) + "() -> " + resultCppType + " { " + values + "return " + call + "; }()";
}

bool MayRepeat(const Expr& operand) { return !operand.effects || MayRepeat(operand.source); }

bool IsLookUpSeen(const Expr& place, const std::vector<Expr>& others) {
    bool effects = place.effects;
    for (const Expr& other : others) effects = effects || other.effects || other.level == Level::Assignment;
    if (!effects) return false;
    std::vector<EffectSet> pieces = {EffectsOfPlace(place.source)};
    for (const Expr& other : others) {
        const bool assigns = other.level == Level::Assignment;
        pieces.push_back(assigns ? EffectsOfAssigned(other.source) : EffectsOf(other.source));
    }
    return OrderCanBeSeen(pieces);
}

bool OrderMatters(const std::vector<Expr>& expressions) { return IsOrderSeen(PointersTo(expressions)); }

bool OrderMatters(const Expr& first, const Expr& second) { return IsOrderSeen({&first, &second}); }

bool OrderMatters(const Expr& object, const std::vector<Expr>& arguments) {
    std::vector<const Expr*> all = PointersTo(arguments);
    all.insert(all.begin(), &object);
    return IsOrderSeen(all);
}

void NameArguments(InOrder& inOrder, const Routine& routine, const std::vector<Expr>& arguments,
                   std::vector<std::string>& texts) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const ValueType& type = routine.parameters[i].type;
        if (type.IsSingle() && type.IsKnown()) texts[i] = inOrder.Name(type, texts[i]);
    }
}
