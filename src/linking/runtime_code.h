// The C++ block that loads the userlib DLLs when the generated program starts, with one wrapper per function.
#pragma once

#include <string>

// The whole block for the main .cpp; empty when no DLL was declared. Calls reach a wrapper under "kvl_" +
// the function's name, which the last lines of the text define.
std::string GenerateUserlibCode();

// The text as a C++ string literal, quotes included.
std::string CppLiteral(const std::string& text);
