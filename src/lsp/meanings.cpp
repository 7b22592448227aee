#include "lsp/meanings.h"

#include <algorithm>
#include <tuple>

#include "lsp/uri.h"

namespace lsp {

std::vector<Meaning> MeaningsOf(Workspace& workspace, const Spot& spot, const korvel::Symbol& symbol) {
    std::vector<Meaning> meanings = {{spot.program, &symbol}};
    const std::string file = NormalPath(symbol.file);
    for (const Program* program : workspace.ProgramsNear(file)) {
        for (const korvel::Symbol& other : program->inspection.symbols) {
            const bool isSame = other.kind == symbol.kind && other.name == symbol.name &&
                                other.line == symbol.line && other.firstColumn == symbol.firstColumn;
            if (isSame && program != spot.program && NormalPath(other.file) == file)
                meanings.push_back({program, &other});
        }
    }
    return meanings;
}

std::vector<korvel::Use> UsesOf(const std::vector<Meaning>& meanings) {
    std::vector<korvel::Use> uses;
    for (const auto& [program, symbol] : meanings) {
        const korvel::Inspection& inspection = program->inspection;
        for (const korvel::Use& use : inspection.uses) {
            if (&inspection.symbols[use.symbol] != symbol) continue;
            uses.push_back(use);
            uses.back().file = NormalPath(use.file);
        }
    }
    const auto placeOf = [](const korvel::Use& use) { return std::tie(use.file, use.line, use.firstColumn); };
    const auto isBefore = [&](const auto& a, const auto& b) { return placeOf(a) < placeOf(b); };
    const auto isSame = [&](const auto& a, const auto& b) { return placeOf(a) == placeOf(b); };
    std::sort(uses.begin(), uses.end(), isBefore);
    uses.erase(std::unique(uses.begin(), uses.end(), isSame), uses.end());
    return uses;
}

}  // namespace lsp
