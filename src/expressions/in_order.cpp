#include "expressions/in_order.h"

#include "expressions/walk.h"
#include "symbols/scopes.h"

const char* Capture() {
    if (InsideRoutine()) return "[&]";
    return currentClass != nullptr && !FileLevelNames::InForce() ? "[this]" : "[]";
}

// What owns memory is handed on, not copied.
std::string InOrder::Name(const ValueType& type, const Code& value) {
    const std::string name = "__kv" + std::to_string(count++);
    values += CppName(type) + " " + name + " = ";
    values += value;
    values += "; ";
    const bool owns = type.Is(Base::String) || type.Is(Base::Element);
    return owns ? "std::move(" + name + ")" : name;
}

std::string InOrder::NameObject(const Code& object) {
    values += "auto&& __kvObject = ";
    values += object;
    values += "; ";
    return "__kvObject";
}

void InOrder::Write(Code& out, const std::string& resultCppType, const Code& call) const {
    out.lambda = true;
    out += std::string(Capture()) + "() -> " + resultCppType + " { ";
    out += values;
    out += "return ";
    out += call;
    out += "; }()";
}
