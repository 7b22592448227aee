// Keywords as they are spelt, and where the words of a statement are keywords at all: names may look like one, as
// members do (p\next).
#pragma once

#include <string>
#include <string_view>

#include "base/token_span.h"

// The keyword that opens the statement; None where a Field of that name is assigned to.
Keyword OpeningKeyword(TokenSpan statement);

// The token as it is to be spelt at its place in the statement.
std::string_view SpellingAt(TokenSpan statement, std::size_t at);

// Whether the token can be the end of an operand, so that a sign behind it has something on its left.
bool EndsOperand(TokenSpan statement, std::size_t at);
