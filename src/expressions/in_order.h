// Where parts are to be worked out one after the other they get names before they are used:
//     [&]() -> int { int __kv0 = first; int __kv1 = second; return KVL_F ( __kv0 , __kv1 ); }()
#pragma once

#include <string>

#include "expressions/code.h"
#include "symbols/value_type.h"

class InOrder {
public:
    // Works out the value here, of the type that it is wanted in; returns what stands for it.
    std::string Name(const ValueType& type, const Code& value);
    // Where an array or Sequence is; what is fresh lives on. Returns what stands for it.
    std::string NamePlace(const Code& place);
    // The object of a call; returns what stands for it.
    std::string NameObject(const ValueType& type, const Code& object);
    // Appends `call`, made of what the names stand for, behind the named values.
    void Write(Code& out, const std::string& resultCppType, const Code& call) const;

private:
    Code values;
    int count = 0;
};
