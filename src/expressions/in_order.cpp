#include "expressions/in_order.h"

#include <algorithm>

#include "symbols/scopes.h"

namespace {

// A lambda in the initial value of a Field cannot reach the object.
bool LambdaReachesAll() { return InsideRoutine() || currentClass == nullptr; }

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
    const std::string capture = InsideRoutine() ? "[&]" : "[]";
    return capture + "() -> " + resultCppType + " { " + values + "return " + call + "; }()";
}

bool OrderMatters(const std::vector<Expr>& arguments) {
    const auto effects =
        std::count_if(arguments.begin(), arguments.end(), [](const Expr& a) { return a.effects; });
    return effects > 1 && LambdaReachesAll();
}

void NameArguments(InOrder& inOrder, const Routine& routine, const std::vector<Expr>& arguments,
                   std::vector<std::string>& texts) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const ValueType& type = routine.parameters[i].type;
        if (type.IsSingle() && type.IsKnown()) texts[i] = inOrder.Name(type, texts[i]);
    }
}

bool OrderMatters(const Expr& first, const Expr& second) {
    return first.effects && second.effects && LambdaReachesAll();
}
