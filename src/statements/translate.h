// Translation of the collected source files: header, second pass, outputs.
#pragma once

#include "statements/source_files.h"

struct State;

// Translates the main source and what it includes, each file where its Include is met first; when something is wrong,
// the files that were not met, too. Mistakes are kept.
void TranslateFiles();

// Translates a file that is included at the top level, unless that has been done before.
void TranslateIncluded(SourceFile& file);

// Translates a file that is included in the open routine, as if its statements stood there.
void TranslatePart(State& state, SourceFile& file);
