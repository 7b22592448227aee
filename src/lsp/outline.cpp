// What a file declares.
#include <set>
#include <tuple>

#include "base/text.h"
#include "lexer/lexer.h"
#include "lsp/blocks.h"
#include "lsp/features.h"
#include "lsp/kinds.h"
#include "lsp/uri.h"

namespace lsp {

namespace {

using Kind = korvel::Symbol::Kind;

bool IsListed(const korvel::Symbol& symbol) {
    return symbol.kind != Kind::File && symbol.kind != Kind::Local && symbol.kind != Kind::Parameter;
}

Json EntryOf(Workspace& workspace, const korvel::Symbol& symbol) {
    Json entry = {{"name", symbol.name},
                  {"kind", RowOf(symbol.kind).symbol},
                  {"range", WholeRange(workspace, symbol)},
                  {"selectionRange", workspace.RangeOf(symbol)}};
    const std::string declaration = DeclarationOf(symbol);
    entry["detail"] = declaration.substr(declaration.find(' ') + 1 + symbol.name.size());
    return entry;
}

}  // namespace

// All names in the programs of the folders that hold the letters asked for, in any letter case; not those of modules.
Json WorkspaceSymbols(Workspace& workspace, const Json& params) {
    const std::string wanted = Lower(params.at("query").get<std::string>());
    const std::string modules = NormalPath(workspace.services.installation) + "/lib/";
    Json entries = Json::array();
    std::set<std::tuple<std::string, int, std::string>> known;  // a file may belong to several programs
    const auto add = [&](const korvel::Symbol& symbol) {
        if (!IsListed(symbol) || Lower(symbol.name).find(wanted) == std::string::npos) return;
        const std::string file = NormalPath(symbol.file);
        if (StartsWith(file, modules) || !known.emplace(file, symbol.line, symbol.name).second) return;
        Json entry = {{"name", symbol.name},
                      {"kind", RowOf(symbol.kind).symbol},
                      {"location", workspace.LocationOf(symbol)}};
        if (!symbol.owner.empty()) entry["containerName"] = symbol.owner;
        entries.push_back(entry);
    };
    for (const Program* program : workspace.OpenPrograms())
        for (const korvel::Symbol& symbol : program->inspection.symbols) add(symbol);
    for (const korvel::Symbol& symbol : workspace.SymbolsElsewhere()) add(symbol);
    return entries;
}

Json DocumentSymbols(Workspace& workspace, const Json& params) {
    const std::string path = PathOfDocument(params);
    const Program& program = workspace.ProgramOf(path);
    const std::string file = SpellingOf(program, path);
    Json entries = Json::array();
    std::map<std::string, std::size_t> owners;
    for (const korvel::Symbol& symbol : program.inspection.symbols) {
        if (!IsListed(symbol) || symbol.file != file || symbol.firstColumn == 0) continue;
        const Json entry = EntryOf(workspace, symbol);
        const auto owner = owners.find(symbol.owner);
        if (owner != owners.end()) {
            entries[owner->second]["children"].push_back(entry);
            continue;
        }
        if (symbol.kind == Kind::Type || symbol.kind == Kind::Element) owners[symbol.name] = entries.size();
        entries.push_back(entry);
    }
    return entries;
}

}  // namespace lsp
