// Include in the second pass.
#pragma once

#include "statements/state.h"

// Include "folder/file.kvl": emits the #include of the file's .cpp, lists its header for the main
// header and translates the file, once per run; inside a routine as a part of it, see parts.h.
void TranslateInclude(State& state, TokenSpan tokens);
