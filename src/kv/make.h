// Making the program of a job: translates and compiles what has changed since the last time.
#pragma once

#include "kv/job.h"

// Afterwards the job's program is up to date. Returns false after telling the user what went wrong.
bool Make(Job& job);
