// What the program's blocks of inline C++ declare, as far as calls from outside have to know it.
#pragma once

#include <string>
#include <vector>

// A function as inline C++ declares or defines it: the C++ types of its parameters and its result, and whether it is
// static at file level, as all other declarations have to be.
struct InlineFunction {
    bool isStatic = false;
    std::string result;
    std::vector<std::string> parameters;
};

// Whatever may declare the name; an expression that looks like a declaration may be among it. The first
// question reads the inline C++ of all files.
std::vector<InlineFunction> FindInlineFunctions(const std::string& name);

// Whether inline C++ includes files, which may declare anything.
bool InlineCppIncludesFiles();
