// Compiles the body of a PreCalc block.
#pragma once

#include <string>
#include <vector>

#include "precalc/table_program.h"

// Compiles `body` (one statement per text, `lines` holding where each stands) into `program`, whose
// name and sizes are set.
void CompileTable(TableProgram& program, const std::vector<std::string>& body, const std::vector<int>& lines);
