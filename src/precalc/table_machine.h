// Runs a compiled PreCalc block.
#pragma once

#include <vector>

#include "precalc/table_program.h"

struct TableValues {
    std::vector<double> items;                  // row by row; 0 where nothing was assigned
    const TableInstruction* wideInt = nullptr;  // the last assignment beyond the range of Int
};

// Runs the program to its end. A wrong statement, a bad index, a division by zero or too many steps end the run.
TableValues RunTable(const TableProgram& program);

// Whether the value, rounded, fits an Int. What is no number at all becomes 0.
bool FitsInt(double value);

// Digits enough to read the same value back, as short as the default format of streams makes it.
std::string NumberText(double value);
