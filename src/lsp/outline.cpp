// What a file declares.
#include <set>
#include <tuple>

#include "base/token_span.h"
#include "lexer/lexer.h"
#include "lsp/features.h"
#include "lsp/kinds.h"
#include "lsp/uri.h"

namespace lsp {

namespace {

using Kind = korvel::Symbol::Kind;

Keyword CloserOf(Kind kind) {
    switch (kind) {
        case Kind::Type:
            return Keyword::EndType;
        case Kind::Element:
            return Keyword::EndElement;
        case Kind::Method:
            return Keyword::EndMethod;
        case Kind::Function:
            return Keyword::EndFunction;
        default:
            return Keyword::None;
    }
}

// The line of the client's on which the declaration ends that begins there.
int LastLine(const Lines& lines, int line, Keyword closer) {
    if (closer == Keyword::None) return line;
    Lexer lexer;
    for (int i = line; i < lines.Count(); ++i) {
        lexer.Cut(lines.Line(i));
        for (const Token token : lexer.tokens)
            if (token->keyword == closer) return i;
    }
    return line;
}

bool IsListed(const korvel::Symbol& symbol) {
    return symbol.kind != Kind::File && symbol.kind != Kind::Local && symbol.kind != Kind::Parameter;
}

Json EntryOf(Workspace& workspace, const korvel::Symbol& symbol) {
    const Lines& lines = workspace.LinesOf(symbol.file);
    const int last = LastLine(lines, symbol.line - 1, CloserOf(symbol.kind));
    const Json selection = workspace.RangeOf(symbol);
    Json range = {{"start", {{"line", symbol.line - 1}, {"character", 0}}},
                  {"end", {{"line", last}, {"character", UnitOf(lines.Line(last), std::string::npos)}}}};
    Json entry = {{"name", symbol.name},
                  {"kind", RowOf(symbol.kind).symbol},
                  {"range", range},
                  {"selectionRange", selection}};
    const std::string declaration = DeclarationOf(symbol);
    entry["detail"] = declaration.substr(declaration.find(' ') + 1 + symbol.name.size());
    return entry;
}

}  // namespace

// All names in the programs that hold the letters asked for, in any letter case.
Json WorkspaceSymbols(Workspace& workspace, const Json& params) {
    const std::string wanted = Lower(params.at("query").get<std::string>());
    Json entries = Json::array();
    std::set<std::tuple<std::string, int, std::string>> known;  // a file may belong to several programs
    for (const Program* program : workspace.OpenPrograms()) {
        for (const korvel::Symbol& symbol : program->inspection.symbols) {
            if (!IsListed(symbol) || Lower(symbol.name).find(wanted) == std::string::npos) continue;
            if (!known.emplace(NormalPath(symbol.file), symbol.line, symbol.name).second) continue;
            Json entry = {{"name", symbol.name},
                          {"kind", RowOf(symbol.kind).symbol},
                          {"location", workspace.LocationOf(symbol)}};
            if (!symbol.owner.empty()) entry["containerName"] = symbol.owner;
            entries.push_back(entry);
        }
    }
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
