// C++ works out operands, arguments and indices in an order of its own, the language from left to right. Where
// it could be seen (analysis/effects.h) they get names before they are used:
//     [&]() -> int { int __kv0 = first; int __kv1 = second; return KVL_F ( __kv0 , __kv1 ); }()
#pragma once

#include <string>
#include <vector>

#include "expressions/walk.h"

class InOrder {
public:
    // Works out the value here, of the type that it is wanted in; returns what stands for it.
    std::string Name(const ValueType& type, const std::string& text);
    // The object of a call or the array of an index; returns what stands for it.
    std::string NameObject(const std::string& text);
    // `call`, made of what the names stand for, behind the named values.
    std::string Text(const std::string& resultCppType, const std::string& call) const;

private:
    std::string values;
    int count = 0;
};

// Whether it can be seen in which order the expressions are worked out.
bool OrderMatters(const std::vector<Expr>& expressions);
bool OrderMatters(const Expr& first, const Expr& second);
bool OrderMatters(const Expr& object, const std::vector<Expr>& arguments);
// The same where the first one is only looked up: an array before its indices, a target before its value.
bool IsLookUpSeen(const Expr& place, const std::vector<Expr>& others);
// Names the values that go to the routine, except for arrays and Sequences: they stay where they are, since
// they live to the end of the call only.
void NameArguments(InOrder& inOrder, const Routine& routine, const std::vector<Expr>& arguments,
                   std::vector<std::string>& texts);
