// Local, Global, Const and Field statements.
#pragma once

#include "statements/state.h"

// The keyword is "local", "global", "const" or "field" in any letter case. Locals and Fields are emitted,
// Globals and Consts go to the header.
void TranslateDeclaration(State& state, TokenSpan tokens);
