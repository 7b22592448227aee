// From Korvel to C++: calls the compiler and shows what it has to say.
#pragma once

#include "kv/job.h"

// Translates, and sets the job's translation. Returns false after showing the mistakes in the source, unless the build
// was disturbed.
bool Translate(Job& job);

// Shows what was odd about a sound program. False when it is not to go on with that.
bool ShowWarnings(const Job& job);

// Sets the job's translation to what the last one has left. False when there is none.
bool LoadTranslation(Job& job);
