// What comments have to do with warnings: they silence them, and begin where somebody meant to go on.
#pragma once

#include <vector>

#include "base/diagnostic.h"

// Whether a comment in the line of the warning asks for silence: "; kv:ok" or "; kv:ok power unreachable".
bool IsSilenced(const korvel::Diagnostic& warning);

// Print "a"; b. The texts of these warnings are yet to be filled in.
std::vector<korvel::Diagnostic> SemicolonsBehindPrint();
