// Which Consts a header has defined before the line being written.
#pragma once

#include "lexer/token_span.h"

// False when the tokens name a Const or Global that the headers define only further down: of this file's
// later lines, or of a file whose header comes later. The main file's header is the last one.
bool UsesOnlyEarlierConsts(TokenSpan tokens);
