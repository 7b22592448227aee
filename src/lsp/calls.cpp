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

// Where the routines of a program stand.
class Routines {
public:
    Routines(Workspace& given, const Program& program) : workspace(given) {
        for (const korvel::Symbol& symbol : program.inspection.symbols) {
            if (symbol.kind == Kind::File) files[NormalPath(symbol.file)].whole = &symbol;
            if (IsRoutine(symbol)) files[NormalPath(symbol.file)].routines[symbol.line].symbol = &symbol;
        }
    }
    // The routine that the use stands in, or else its file.
    const korvel::Symbol* Around(const korvel::Use& use) {
        const auto file = files.find(NormalPath(use.file));
        if (file == files.end()) return nullptr;
        auto next = file->second.routines.upper_bound(use.line);
        if (next == file->second.routines.begin()) return file->second.whole;
        Routine& routine = (--next)->second;
        if (routine.last == 0) routine.last = LastLine(workspace.LinesOf(file->first), *routine.symbol) + 1;
        return use.line <= routine.last ? routine.symbol : file->second.whole;
    }

private:
    struct Routine {
        const korvel::Symbol* symbol = nullptr;
        int last = 0;  // once somebody has asked
    };
    struct File {
        const korvel::Symbol* whole = nullptr;
        std::map<int, Routine> routines;  // by their first line
    };
    Workspace& workspace;
    std::map<std::string, File> files;
};

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
    std::vector<Routines> programs;
    programs.reserve(meanings.size());
    for (const Meaning& meaning : meanings) programs.emplace_back(workspace, *meaning.program);
    for (const korvel::Use& use : UsesOf(meanings)) {
        for (Routines& routines : programs) {
            const korvel::Symbol* caller = use.declares ? nullptr : routines.Around(use);
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
