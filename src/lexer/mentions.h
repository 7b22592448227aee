// What the text of a statement mentions, the holes of its Strings included.
#pragma once

#include "base/token_span.h"

// The tokens in the holes of a String; none for most.
Tokens HoleTokens(const Word& literal);

// The tokens, each String with holes followed by the tokens in them.
Tokens MentionedTokens(TokenSpan tokens);

bool Mentions(TokenSpan tokens, Token name);
