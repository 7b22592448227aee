// How far declarations reach.
#pragma once

#include "lsp/workspace.h"

namespace lsp {

// The line of the client's on which the declaration ends: its own where no block follows, as in an Extern.
int LastLine(const Lines& lines, const korvel::Symbol& symbol);
// All of it, by lines.
Json WholeRange(Workspace& workspace, const korvel::Symbol& symbol);

}  // namespace lsp
