// What a name means: its declaration and the comment above it, or what the manual says.
#include <algorithm>

#include "lsp/code.h"
#include "lsp/features.h"
#include "lsp/kinds.h"
#include "lsp/uri.h"

namespace lsp {

namespace {

using Kind = korvel::Symbol::Kind;

// Without blanks and ";" in front; false where the line is no comment.
bool TakeComment(std::string_view line, std::string_view& text) {
    const std::size_t start = line.find_first_not_of(" \t");
    if (start == std::string_view::npos || line[start] != ';') return false;
    text = line.substr(start + 1);
    text.remove_prefix(std::min(text.find_first_not_of(" ;"), text.size()));
    return true;
}

// The lines of comment right above a line of the client's.
std::string CommentAbove(const Lines& lines, int line) {
    std::string comment;
    for (std::string_view text; TakeComment(lines.Line(--line), text);)
        comment = std::string(text) + "\n" + comment;
    return comment;
}

// What the manual says of a name of the library.
std::string InManual(const Workspace& workspace, const korvel::Symbol& symbol) {
    const std::string modules = NormalPath(workspace.services.installation + "/lib/std") + "/";
    const std::string file = NormalPath(symbol.file);
    const bool isRoutine = symbol.kind == Kind::Function || symbol.kind == Kind::Method;
    if (!isRoutine || file.compare(0, modules.size(), modules) != 0) return {};
    const std::string module = file.substr(modules.size(), file.rfind('.') - modules.size());
    return workspace.services.describe(module, symbol.owner, symbol.name);
}

std::string TextOf(Workspace& workspace, const korvel::Symbol& symbol) {
    std::string text = "```korvel\n" + DeclarationOf(symbol) + "\n```\n";
    const bool isMember = symbol.kind == Kind::Field || symbol.kind == Kind::Method;
    if (isMember) text += "of " + symbol.owner + "\n\n";
    return text + DescriptionOf(workspace, symbol);
}

std::string TextAt(Workspace& workspace, const Spot& spot) {
    if (const korvel::Symbol* symbol = SymbolAt(spot)) return TextOf(workspace, *symbol);
    const std::string word = WordAt(spot);
    return word.empty() || !CodeAt(workspace, spot).isCode ? "" : workspace.services.explain(word);
}

}  // namespace

std::string PathOfDocument(const Json& params) {
    return PathOfUri(params.at("textDocument").at("uri").get<std::string>());
}

std::string DeclarationOf(const korvel::Symbol& symbol) {
    const std::string type = symbol.type.empty() ? "" : ":" + symbol.type;
    const std::string quote = symbol.kind == Kind::File ? "\"" : "";
    const std::string value = symbol.value.empty() ? "" : " = " + symbol.value;
    return RowOf(symbol.kind).word + std::string(" ") + quote + symbol.name + quote + type +
           symbol.parameters + value;
}

std::string DescriptionOf(Workspace& workspace, const korvel::Symbol& symbol) {
    const std::string comment = CommentAbove(workspace.LinesOf(symbol.file), symbol.line - 1);
    return comment.empty() ? InManual(workspace, symbol) : comment;
}

Json Hover(Workspace& workspace, const Json& params) {
    const std::string text = TextAt(workspace, workspace.SpotOf(params));
    if (text.empty()) return nullptr;
    return {{"contents", {{"kind", "markdown"}, {"value", text}}}};
}

}  // namespace lsp
