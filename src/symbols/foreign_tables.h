// What is known of words of other languages, in lower case; null or empty where nothing is.
#pragma once

#include <cstddef>
#include <string>

#include "base/token_span.h"

// Of a word alone: what to write here, or what a Function or Type of a module is called.
std::string HintAtWord(const std::string& word);
// Whether the first of the two is known.
bool IsForeignWord(const std::string& word);

// Of one that stands behind the name of what it belongs to elsewhere: math.sqrt, std::cout
std::string HintAtMember(const std::string& word);

// Of what a line begins with that is wrong at the token of that number.
const char* HintAtBeginning(TokenSpan tokens, const std::string& word, std::size_t at);
