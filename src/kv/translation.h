// What the compiler has found out about a program, as a text: so it comes from the process that translates, and so it is
// kept for a program that needs no translation.
#pragma once

#include <string>

#include "library/korvel.h"

// All of the result but generated files.
std::string PackTranslation(const korvel::Result& result);

// False when the text is none of PackTranslation, or not a whole one.
bool UnpackTranslation(const std::string& text, korvel::Result& result);
