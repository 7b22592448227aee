// Compiles the body of a PreCalc block.
#pragma once

#include <string>
#include <vector>

#include "precalc/table_program.h"

// Compiles `body` (`lines` holding where each of its lines or statements stands) into `program`, whose
// name and sizes are set.
void CompileTable(TableProgram& program, const std::vector<TokenSpan>& body, const std::vector<int>& lines);
