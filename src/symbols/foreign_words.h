// What people write who come from other languages, and what to write here instead.
#pragma once

#include "base/diagnostic.h"

// Gives a mistake about such words a hint, in place of other advice.
void HintAtForeignWords(korvel::Diagnostic& mistake);
