// The names that may stand at a place.
#include <algorithm>
#include <set>

#include "base/keywords.h"
#include "base/token_text.h"
#include "lexer/lexer.h"
#include "lsp/code.h"
#include "lsp/features.h"
#include "lsp/include_paths.h"
#include "lsp/kinds.h"
#include "lsp/snippets.h"

namespace lsp {

namespace {

using Kind = korvel::Symbol::Kind;

constexpr char mainName[] = "Main";  // to declare, not to call

constexpr int keywordNumber = 14;

constexpr int fileNumber = 17, folderNumber = 19;

// What the program calls by itself.
bool IsCalledAlone(const korvel::Symbol& symbol) {
    return (symbol.kind == Kind::Function && Lower(symbol.name) == "main") ||
           (symbol.kind == Kind::Method && (symbol.name == "constructor" || symbol.name == "destructor"));
}

class Offer {
public:
    Json items = Json::array();

    void Add(const korvel::Symbol& symbol) {
        if (IsCalledAlone(symbol) || !names.insert(symbol.name).second) return;
        items.push_back({{"label", symbol.name},
                         {"kind", RowOf(symbol.kind).completion},
                         {"detail", DeclarationOf(symbol)}});
    }
    void AddFile(const std::string& name) {
        const bool isFolder = name.back() == '/';
        items.push_back({{"label", name}, {"kind", isFolder ? folderNumber : fileNumber}});
    }
    void AddWord(const std::string& word, bool asSnippet = false) {
        if (!names.insert(word).second) return;
        items.push_back({{"label", word}, {"kind", keywordNumber}});
        const std::string snippet = asSnippet ? SnippetOf(word) : "";
        if (!snippet.empty()) items.back().update({{"insertText", snippet}, {"insertTextFormat", 2}});
    }

private:
    std::set<std::string> names;
};

bool IsMember(const korvel::Symbol& symbol) {
    return symbol.kind == Kind::Field || symbol.kind == Kind::Method;
}
bool IsLocal(const korvel::Symbol& symbol) {
    return symbol.kind == Kind::Local || symbol.kind == Kind::Parameter;
}

bool IsInScope(const korvel::Symbol& local, const Spot& spot) {
    return local.file == spot.file && local.line <= spot.line && spot.line <= local.lastLine;
}

// The Type whose Method the spot is in; empty elsewhere.
std::string OwnerAt(const Spot& spot) {
    std::string owner;
    for (const korvel::Symbol& symbol : spot.program->inspection.symbols)
        if ((symbol.kind == Kind::Method || symbol.kind == Kind::Function) && symbol.file == spot.file &&
            symbol.line <= spot.line)
            owner = symbol.owner;
    return owner;
}

void AddMembers(Offer& offer, const Spot& spot, const std::string& owner) {
    for (const korvel::Symbol& symbol : spot.program->inspection.symbols)
        if (IsMember(symbol) && symbol.owner == owner) offer.Add(symbol);
}

// The nearest first: what is offered first hides what is called the same.
void AddVisible(Offer& offer, const Spot& spot, const Workspace& workspace) {
    const std::vector<korvel::Symbol>& symbols = spot.program->inspection.symbols;
    for (auto symbol = symbols.rbegin(); symbol != symbols.rend(); ++symbol)
        if (IsLocal(*symbol) && IsInScope(*symbol, spot)) offer.Add(*symbol);
    const std::string owner = OwnerAt(spot);
    if (!owner.empty()) AddMembers(offer, spot, owner);
    for (const korvel::Symbol& symbol : symbols)
        if (!IsLocal(symbol) && !IsMember(symbol) && symbol.kind != Kind::File) offer.Add(symbol);
    for (const std::string& word : workspace.services.words)
        if (word != mainName) offer.AddWord(word, workspace.takesSnippets);
}

void AddKind(Offer& offer, const Spot& spot, Kind kind) {
    for (const korvel::Symbol& symbol : spot.program->inspection.symbols)
        if (symbol.kind == kind) offer.Add(symbol);
}

// What Sequences can hold.
void AddItems(Offer& offer, const Spot& spot) {
    for (const char* word : {"Int", "Long", "Short", "Byte", "Bool", "Double", "String"}) offer.AddWord(word);
    AddKind(offer, spot, Kind::Element);
}

void AddTypes(Offer& offer, const Spot& spot) {
    AddItems(offer, spot);
    AddKind(offer, spot, Kind::Type);
    offer.AddWord("Sequence");
}

// What may follow the word or sign in front of the place; `column` is that of the sign.
void AddBehind(Offer& offer, const Spot& spot, const Workspace& workspace, std::string_view before,
               std::size_t column) {
    const char sign = before.empty() ? ' ' : before.back();
    const Keyword word = FindKeyword(Lower(LastWord(before)));
    const std::string_view owner = sign == '.' ? LastWord(before.substr(0, before.size() - 1)) : "";
    const bool isPoint = !owner.empty() && !IsDigit(owner[0]);
    if (sign == '\\' || isPoint)
        AddMembers(offer, spot,
                   korvel::TypeAt(spot.program->inspection, spot.file, spot.line, static_cast<int>(column)));
    else if (word == Keyword::Of)
        AddItems(offer, spot);
    else if (sign == ':' || word == Keyword::As)
        AddTypes(offer, spot);
    else if (word == Keyword::Create || word == Keyword::New)
        AddKind(offer, spot, Kind::Type);
    else {
        if (word == Keyword::Function) offer.AddWord(mainName);
        AddVisible(offer, spot, workspace);
    }
}

}  // namespace

Json Completion(Workspace& workspace, const Json& params) {
    const Spot spot = workspace.SpotOf(params);
    Offer offer;
    std::string begun;
    if (IsIncludedName(spot.before, begun)) {
        for (const std::string& name :
             NamesToInclude(spot.program->main, workspace.services.installation, begun))
            offer.AddFile(name);
        return offer.items;
    }
    const Code code = CodeAt(workspace, spot);
    const std::size_t start = StartOfWord(code.before);
    if (code.isCode)
        AddBehind(offer, spot, workspace, std::string_view(code.before).substr(0, start),
                  code.column + start);
    return offer.items;
}

}  // namespace lsp
