#include "expressions/in_order.h"

#include "expressions/walk.h"
#include "symbols/scopes.h"

namespace {

// What a lambda takes along: in the initial value of a Field that is the object, outside of classes nothing.
const char* Capture() {
    if (InsideRoutine()) return "[&]";
    return currentClass != nullptr && !FileLevelNames::InForce() ? "[this]" : "[]";
}

}  // namespace

// What owns memory is handed on, not copied.
std::string InOrder::Name(const ValueType& type, const Code& value) {
    const std::string name = "__kv" + std::to_string(count++);
    Put(values, CppName(type), " ", name, " = ", value, "; ");
    const bool owns = type.Is(Base::String) || type.Is(Base::Element);
    return owns ? "std::move(" + name + ")" : name;
}

std::string InOrder::NamePlace(const Code& place) {
    const std::string name = "__kv" + std::to_string(count++);
    Put(values, "auto&& ", name, " = ", place, "; ");
    return name;
}

// An object of a Type is the one that its variable holds now; an Element is where it is.
std::string InOrder::NameObject(const ValueType& type, const Code& object) {
    Put(values, type.Is(Base::Object) ? "auto" : "auto&&", " __kvObject = ", object, "; ");
    return "__kvObject";
}

void InOrder::Write(Code& out, const std::string& resultCppType, const Code& call) const {
    out.lambda = true;
    Put(out, Capture(), "() -> ", resultCppType, " { ", values, "return ", call, "; }()");
}
