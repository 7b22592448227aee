// Leaving a program where the user wants to have it.
#pragma once

#include "kv/job.h"

// Puts the program, with the shared libraries it loads, where kv build shall leave it. Nothing is written unless all of
// it can be without a loss for the user. Returns false after telling the user what went wrong.
bool Install(const Job& job);
