// What people write who come from other languages, and what to write here instead.
#pragma once

#include <string>

#include "base/diagnostic.h"

// Gives a mistake about such words a hint, in place of other advice.
void HintAtForeignWords(korvel::Diagnostic& mistake);

// The same for a word alone, in any letter case; empty for other words.
std::string HintAtForeignWord(const std::string& word);

// Whether the word begins a block in other languages, and whether it divides or ends one there.
bool OpensElsewhere(const std::string& word);
bool ClosesElsewhere(const std::string& word);

// Whether variables are declared with the word in other languages.
bool DeclaresElsewhere(const std::string& word);

// The Function of a module, or of the language, that other languages call so, in any letter case; empty for other words.
std::string FunctionCalledElsewhere(const std::string& word);
