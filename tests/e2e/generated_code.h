// What must hold for every generated file, whatever the program.
#pragma once

#include <string>

// Empty when braces, parentheses and brackets of C++ text balance outside strings and comments and no
// unfilled hole ("{{name}}", "@", "$") is left; otherwise what is wrong and where.
std::string FindFault(const std::string& code);
