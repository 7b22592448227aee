// With and EndWith, and the word `its` that stands for the object of the innermost With.
#pragma once

#include "lexer/lexer.h"
#include "statements/state.h"

// Opens a With over an object of which nothing is known.
void OpenUnknownWith(State& state);

// The tokens as they may have been written: words stand apart.
std::string Spelling(TokenSpan tokens);

// True when a token is `its`, or inside a With a string that may name it in a hole.
bool MentionsIts(const State& state, TokenSpan tokens);

// The statement with `its` replaced. Without an open With, `its` in front of a field accessor ends the run
// and stays as it is elsewhere.
Tokens SubstituteIts(State& state, TokenSpan tokens);
