// A name in all programs that have it.
#pragma once

#include <vector>

#include "lsp/workspace.h"

namespace lsp {

// A name in one of the programs that know it.
struct Meaning {
    const Program* program = nullptr;
    const korvel::Symbol* symbol = nullptr;
};

// Files may belong to several programs: the name in all those near its file that have its declaration.
std::vector<Meaning> MeaningsOf(Workspace& workspace, const Spot& spot, const korvel::Symbol& symbol);

// In the order of their places, each once.
std::vector<korvel::Use> UsesOf(const std::vector<Meaning>& meanings);

}  // namespace lsp
