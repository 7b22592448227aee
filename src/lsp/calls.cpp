// Which routines call which: a routine that is named in another one, be it for a timer, is called by it.
#include <algorithm>
#include <map>
#include <tuple>

#include "base/paths.h"
#include "lsp/blocks.h"
#include "lsp/features.h"
#include "lsp/kinds.h"
#include "lsp/meanings.h"
#include "lsp/uri.h"

namespace lsp {

namespace {

using Kind = korvel::Symbol::Kind;

bool IsRoutine(const korvel::Symbol& symbol) {
    return symbol.kind == Kind::Function || symbol.kind == Kind::Method;
}

Json ItemOf(Workspace& workspace, const korvel::Symbol& symbol) {
    return {{"name", symbol.kind == Kind::File ? StripFolder(symbol.name) : symbol.name},
            {"kind", RowOf(symbol.kind).symbol},
            {"detail", symbol.owner},
            {"uri", workspace.UriOf(symbol.file)},
            {"range", WholeRange(workspace, symbol)},
            {"selectionRange", workspace.RangeOf(symbol)}};
}

// The routine that the use stands in, or else its file; symbols stand in the order of their places.
const korvel::Symbol* Around(Workspace& workspace, const Program& program, const korvel::Use& use) {
    const korvel::Symbol *file = nullptr, *routine = nullptr;
    const std::string path = NormalPath(use.file);
    for (const korvel::Symbol& symbol : program.inspection.symbols) {
        if (NormalPath(symbol.file) != path) continue;
        if (symbol.kind == Kind::File) file = &symbol;
        if (IsRoutine(symbol) && symbol.line <= use.line) routine = &symbol;
    }
    const bool isInside = routine != nullptr && use.line <= LastLine(workspace.LinesOf(path), *routine) + 1;
    return isInside ? routine : file;
}

// Calls by what is at their other end, in the order in which that is met first.
class Calls {
public:
    Calls(Workspace& given, const char* otherEnd) : workspace(given), end(otherEnd) {}

    void Add(const korvel::Symbol& symbol, const korvel::Use& use) {
        const auto [entry, isNew] =
            numbers.try_emplace({NormalPath(symbol.file), symbol.line, symbol.name}, list.size());
        if (isNew) list.push_back({{end, ItemOf(workspace, symbol)}, {"fromRanges", Json::array()}});
        list[entry->second]["fromRanges"].push_back(workspace.RangeOf(use));
    }
    Json list = Json::array();

private:
    Workspace& workspace;
    const char* end;
    std::map<std::tuple<std::string, int, std::string>, std::size_t> numbers;
};

// The spot of an item that the client has from us.
Spot SpotOfItem(Workspace& workspace, const Json& params) {
    const Json& item = params.at("item");
    return workspace.SpotOf(
        {{"textDocument", {{"uri", item.at("uri")}}}, {"position", item.at("selectionRange").at("start")}});
}

}  // namespace

Json PrepareCallHierarchy(Workspace& workspace, const Json& params) {
    const korvel::Symbol* symbol = SymbolAt(workspace.SpotOf(params));
    if (symbol == nullptr || !IsRoutine(*symbol)) return nullptr;
    return Json::array({ItemOf(workspace, *symbol)});
}

Json IncomingCalls(Workspace& workspace, const Json& params) {
    const Spot spot = SpotOfItem(workspace, params);
    const korvel::Symbol* symbol = SymbolAt(spot);
    Calls calls(workspace, "from");
    if (symbol == nullptr || !IsRoutine(*symbol)) return calls.list;
    const std::vector<Meaning> meanings = MeaningsOf(workspace, spot, *symbol);
    for (const korvel::Use& use : UsesOf(meanings)) {
        for (const Meaning& meaning : meanings) {
            const korvel::Symbol* caller = use.declares ? nullptr : Around(workspace, *meaning.program, use);
            if (caller == nullptr) continue;
            calls.Add(*caller, use);
            break;
        }
    }
    return calls.list;
}

Json OutgoingCalls(Workspace& workspace, const Json& params) {
    const Spot spot = SpotOfItem(workspace, params);
    const korvel::Symbol* symbol = SymbolAt(spot);
    Calls calls(workspace, "to");
    if (symbol == nullptr || !IsRoutine(*symbol)) return calls.list;
    const korvel::Inspection& inspection = spot.program->inspection;
    const int last = LastLine(workspace.LinesOf(symbol->file), *symbol) + 1;
    for (const korvel::Use& use : inspection.uses) {
        const bool isInside = use.file == symbol->file && symbol->line <= use.line && use.line <= last;
        const korvel::Symbol& called = inspection.symbols[use.symbol];
        if (isInside && !use.declares && IsRoutine(called)) calls.Add(called, use);
    }
    return calls.list;
}

}  // namespace lsp
