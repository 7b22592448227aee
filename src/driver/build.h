// One run of the compiler, phase by phase.
#pragma once

// Runs all phases behind the command line with the flags in `settings`. Returns when the build is done;
// whatever is wrong ends the run.
void BuildProgram();
