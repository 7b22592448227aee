// Walks the program's files before anything is translated, so that every Type and Element is known by
// name wherever it is declared.
#pragma once

#include <string>

// Fills symbols.classes, classIndex and sourceFiles from the main source and all that it includes. An
// Include that reaches its own file ends the run; files that cannot be read are left to the first pass.
void CollectNames(const std::string& mainSource);
