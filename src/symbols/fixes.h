// Changes that mend a mistake, as an editor makes them.
#pragma once

#include <cstddef>
#include <string>

#include "base/diagnostic.h"

// Adds the change that puts the text in place of the bytes [from, to) of a line of the mistake's file, its own line where
// none is given. Nothing is replaced where both are one place.
void AddFix(korvel::Diagnostic& mistake, int line, std::size_t from, std::size_t to, const std::string& text);
void AddFix(korvel::Diagnostic& mistake, std::size_t from, std::size_t to, const std::string& text);
