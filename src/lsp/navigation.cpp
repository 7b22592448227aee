// Where a name is declared and used, and giving it another one.
#include <algorithm>

#include "base/text.h"
#include "base/token_span.h"
#include "lexer/lexer.h"
#include "lsp/features.h"
#include "lsp/meanings.h"
#include "lsp/uri.h"

namespace lsp {

namespace {

using Kind = korvel::Symbol::Kind;

std::size_t CountMistakes(const korvel::Result& result) {
    const auto isMistake = [](const korvel::Diagnostic& said) {
        return said.severity == korvel::Severity::Error;
    };
    return static_cast<std::size_t>(
        std::count_if(result.diagnostics.begin(), result.diagnostics.end(), isMistake));
}

std::string FirstMistake(const korvel::Result& result) {
    for (const korvel::Diagnostic& said : result.diagnostics)
        if (said.severity == korvel::Severity::Error) return said.message;
    return {};
}

// A file's text with the name in place of the uses in it, which are in their order.
std::string Renamed(const Lines& lines, const std::vector<korvel::Use>& uses, const std::string& name) {
    std::string text = lines.Text();
    for (auto use = uses.rbegin(); use != uses.rend(); ++use) {
        const std::size_t line = lines.Offset(use->line - 1, 0);
        const auto from = static_cast<std::size_t>(use->firstColumn) - 1;
        const auto to = static_cast<std::size_t>(use->lastColumn);
        text.replace(line + from, to - from, name);
    }
    return text;
}

using UsesByFile = std::map<std::string, std::vector<korvel::Use>>;

void RefuseForeign(const Workspace& workspace, const korvel::Symbol& symbol) {
    const std::string root = NormalPath(workspace.services.installation) + "/";
    if (StartsWith(NormalPath(symbol.file), root))
        throw Refusal("'" + symbol.name + "' belongs to the installation");
    if (symbol.kind == Kind::File) throw Refusal("files are renamed outside of their texts");
}

// Whether the declaration stands in a block that tells of functions of C.
bool IsExtern(const Lines& lines, const korvel::Symbol& symbol) {
    Lexer lexer;
    for (int i = symbol.line - 2; i >= 0; --i) {
        lexer.Cut(lines.Line(i));
        const Keyword word = TokenSpan(lexer.tokens).KeywordAt(0);
        if (word == Keyword::Extern || word == Keyword::EndExtern) return word == Keyword::Extern;
    }
    return false;
}

bool HasWord(std::string_view text, const std::string& word) {
    for (std::size_t at = text.find(word); at != std::string_view::npos; at = text.find(word, at + 1)) {
        const std::size_t end = at + word.size();
        if (end == text.size() || !IsOfWord(text[end])) return true;
    }
    return false;
}

// C++ knows the name, too, and is not looked at.
void RefuseInCpp(Workspace& workspace, const Meaning& meaning) {
    const korvel::Symbol& symbol = *meaning.symbol;
    if (symbol.kind == Kind::Function && IsExtern(workspace.LinesOf(symbol.file), symbol))
        throw Refusal("'" + symbol.name + "' is the name of a function of C");
    for (const std::string& source : meaning.program->inspection.result.sources)
        if (HasWord(workspace.LinesOf(source).Text(), "KVL_" + symbol.name))
            throw Refusal("inline C++ uses '" + symbol.name + "', as KVL_" + symbol.name);
}

void RefuseAsName(const std::string& name) {
    const bool isWord = !name.empty() && std::all_of(name.begin(), name.end(), IsOfWord);
    if (!isWord) throw Refusal("'" + name + "' is no name");
    if (FindKeyword(Lower(name)) != Keyword::None) throw Refusal("'" + name + "' is a word of the language");
}

// Whether the use is by its name: there are others, `its`.
bool IsWritten(const Lines& lines, const korvel::Use& use, const std::string& name) {
    const std::string_view line = lines.Line(use.line - 1);
    const std::size_t from = std::min(static_cast<std::size_t>(use.firstColumn) - 1, line.size());
    return line.substr(from, name.size()) == name;
}

const korvel::Symbol& RenamedAt(const Workspace& workspace, const Spot& spot) {
    const korvel::Symbol* symbol = SymbolAt(spot);
    if (symbol == nullptr) throw Refusal("there is no name here that the program declares");
    RefuseForeign(workspace, *symbol);
    return *symbol;
}

// Every name has to mean what it meant: the renamed program is looked at as a whole.
void CheckRenamed(const korvel::Inspection& before, const korvel::Request& request, const std::string& name) {
    const korvel::Inspection after = korvel::Inspect(request);
    if (CountMistakes(after.result) > CountMistakes(before.result)) {
        const std::string said = CountMistakes(before.result) == 0 ? ": " + FirstMistake(after.result) : "";
        throw Refusal("the program would be wrong with '" + name + "'" + said);
    }
    const auto same = [](const korvel::Use& a, const korvel::Use& b) { return a.symbol == b.symbol; };
    if (!std::equal(before.uses.begin(), before.uses.end(), after.uses.begin(), after.uses.end(), same))
        throw Refusal("'" + name + "' means something else where the name is used");
}

}  // namespace

Json Definition(Workspace& workspace, const Json& params) {
    const Spot spot = workspace.SpotOf(params);
    const korvel::Symbol* symbol = SymbolAt(spot);
    if (symbol == nullptr) return nullptr;
    Json location = workspace.LocationOf(*symbol);
    if (symbol->kind == Kind::File) location["range"]["end"] = location["range"]["start"];
    return location;
}

Json References(Workspace& workspace, const Json& params) {
    const Spot spot = workspace.SpotOf(params);
    const korvel::Symbol* symbol = SymbolAt(spot);
    Json locations = Json::array();
    if (symbol == nullptr) return locations;
    const bool declarations =
        params.contains("context") && params["context"].value("includeDeclaration", true);
    for (const korvel::Use& use : UsesOf(MeaningsOf(workspace, spot, *symbol)))
        if (declarations || !use.declares) locations.push_back(workspace.LocationOf(use));
    return locations;
}

Json PrepareRename(Workspace& workspace, const Json& params) {
    const Spot spot = workspace.SpotOf(params);
    RenamedAt(workspace, spot);
    return workspace.RangeOf(*korvel::UseAt(spot.program->inspection, spot.file, spot.line, spot.column));
}

Json Rename(Workspace& workspace, const Json& params) {
    const std::string name = params.at("newName").get<std::string>();
    const Spot spot = workspace.SpotOf(params);
    const std::vector<Meaning> meanings = MeaningsOf(workspace, spot, RenamedAt(workspace, spot));
    RefuseAsName(name);
    UsesByFile files;
    Json changes = Json::object();
    for (const korvel::Use& use : UsesOf(meanings)) {
        if (!IsWritten(workspace.LinesOf(use.file), use, meanings[0].symbol->name)) continue;
        files[use.file].push_back(use);
        changes[workspace.UriOf(use.file)].push_back({{"range", workspace.RangeOf(use)}, {"newText", name}});
    }
    for (const Meaning& meaning : meanings) {
        RefuseInCpp(workspace, meaning);
        korvel::Request request = workspace.RequestFor(meaning.program->main);
        for (const auto& [file, uses] : files)
            request.overlays.push_back({file, Renamed(workspace.LinesOf(file), uses, name)});
        CheckRenamed(meaning.program->inspection, request, name);
    }
    return {{"changes", changes}};
}

}  // namespace lsp
