// The holes of String literals, for those who look at what a piece of the program mentions.
#pragma once

#include <string>

#include "lexer/lexer.h"

// The tokens of all holes of a String token, one hole behind the other; none for most Strings.
Tokens HoleTokens(const std::string& token);
