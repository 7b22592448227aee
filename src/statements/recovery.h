// How the second pass goes on behind a wrong statement. What the statement has left
// half done is taken back; a block that it would have opened or closed is opened or closed all the same, so that the
// words that belong to it are no mistakes; where that cannot be done, what follows is passed over.
#pragma once

#include "statements/state.h"

// Translates the statement, or keeps its mistake and recovers.
void TranslateOrRecover(State& state, TokenSpan statement, StatementHandler translate);
