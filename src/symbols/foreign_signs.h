// Signs and quotes as other languages have them, and what to write here instead.
#pragma once

#include <cstddef>
#include <string_view>

#include "base/token_span.h"

// What may help where a line is wrong at the token with the number, which may lie beyond its end; null when nothing is
// known.
const char* HintAtQuotes(std::string_view line, TokenSpan tokens, std::size_t at);
const char* HintAtSign(TokenSpan tokens, std::size_t at);

// Local = 3, Field :Int: whether the sign stands where a name would be declared.
bool LacksName(TokenSpan tokens, std::size_t at);

// Whether the name is a variable that is an object.
bool IsObject(const Word& name);

// Whether the quote of other languages at the number begins a text, and no comment: Print 'text'
bool BeginsText(std::string_view line, TokenSpan tokens, std::size_t at);

// Whether the line ends in an operator or comma, as one does elsewhere that goes on in the next line.
bool EndsOpen(TokenSpan tokens);
