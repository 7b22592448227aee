// The generated files of a program.
#pragma once

#include <string>
#include <vector>

// Writes the outputs of a finished program, as far as they have changed. Throws StaleRecord.
void WriteProgram();
// Those of these sources only, which are finished although a mistake has been found behind them.
void WriteFinished(const std::vector<std::string>& sources);
