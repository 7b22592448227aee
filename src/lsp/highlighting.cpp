// What names are, for colours, and the other places of one.
#include "lsp/features.h"
#include "lsp/kinds.h"
#include "lsp/uri.h"

namespace lsp {

namespace {

using Kind = korvel::Symbol::Kind;

constexpr unsigned declares = 1, isReadOnly = 2;  // bits for TokenModifiers

}  // namespace

Json TokenTypes() { return {"class", "struct", "property", "method", "function", "variable", "parameter"}; }
Json TokenModifiers() { return {"declaration", "readonly"}; }

// Five numbers for each name: lines and units from the one before it, length, type and modifiers.
Json SemanticTokens(Workspace& workspace, const Json& params) {
    const std::string path = PathOfDocument(params);
    const Program& program = workspace.ProgramOf(path);
    const std::string file = SpellingOf(program, path);
    const Lines& lines = workspace.LinesOf(path);
    Json data = Json::array();
    int line = 0, unit = 0;
    for (const korvel::Use& use : program.inspection.uses) {
        const korvel::Symbol& symbol = program.inspection.symbols[use.symbol];
        if (use.file != file || use.firstColumn == 0 || symbol.kind == Kind::File) continue;
        const int start = lines.UnitOf(use.line - 1, static_cast<std::size_t>(use.firstColumn) - 1);
        const int end = lines.UnitOf(use.line - 1, static_cast<std::size_t>(use.lastColumn));
        const bool sameLine = use.line - 1 == line;
        const unsigned modifiers =
            (use.declares ? declares : 0U) | (symbol.kind == Kind::Const ? isReadOnly : 0U);
        for (const int number :
             {use.line - 1 - line, sameLine ? start - unit : start, end - start, RowOf(symbol.kind).token})
            data.push_back(number);
        data.push_back(modifiers);
        line = use.line - 1;
        unit = start;
    }
    return {{"data", data}};
}

Json Highlights(Workspace& workspace, const Json& params) {
    const Spot spot = workspace.SpotOf(params);
    const korvel::Inspection& inspection = spot.program->inspection;
    const korvel::Symbol* symbol = SymbolAt(spot);
    Json highlights = Json::array();
    for (const korvel::Use& use : inspection.uses)
        if (use.file == spot.file && &inspection.symbols[use.symbol] == symbol)
            highlights.push_back({{"range", workspace.RangeOf(use)}, {"kind", 1}});
    return highlights;
}

}  // namespace lsp
