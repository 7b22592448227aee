// The usual form of a program's text: indentation by blocks, one blank where one belongs, keywords in their own
// spelling.
#pragma once

#include <string>

// The text in its usual form. It means the same: tokens stay, lines, line ends, comments and inline C++ too. What is
// in its usual form already comes back unchanged.
std::string Formatted(const std::string& text);
