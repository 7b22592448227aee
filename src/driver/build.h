// One run of the compiler, phase by phase.
#pragma once

// Runs all phases behind the command line with the flags in `settings`. Returns the status of the
// process: 0, or 1 when something is wrong, which is said then. Files that were finished leave their outputs behind.
int BuildProgram();
