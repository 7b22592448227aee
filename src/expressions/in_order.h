// C++ works out the arguments of a call in any order, the language from left to right. Where it could be
// seen they get names before the call:
//     [&]() -> int { int __kv0 = first; int __kv1 = second; return KVL_F ( __kv0 , __kv1 ); }()
#pragma once

#include <string>
#include <vector>

#include "expressions/walk.h"

class InOrder {
public:
    // Works out the value here, of the type that it is wanted in; returns what stands for it in the call.
    std::string Name(const ValueType& type, const std::string& text);
    // The object of a call; returns what stands for it.
    std::string NameObject(const std::string& text);
    // `call`, made of what the names stand for, behind the named values.
    std::string Text(const std::string& resultCppType, const std::string& call) const;

private:
    std::string values;
    int count = 0;
};

// Whether two or more of them run code of the program, and a lambda can name them.
bool OrderMatters(const std::vector<Expr>& arguments);
bool OrderMatters(const Expr& first, const Expr& second);
// Names the values that go to the routine, except for arrays and Sequences: they stay where they are, since
// they live to the end of the call only.
void NameArguments(InOrder& inOrder, const Routine& routine, const std::vector<Expr>& arguments,
                   std::vector<std::string>& texts);
