// What is told beside the text: types that are not written down.
#include "lsp/features.h"
#include "lsp/uri.h"

namespace lsp {

namespace {

using Kind = korvel::Symbol::Kind;

bool IsVariable(Kind kind) {
    return kind == Kind::Local || kind == Kind::Global || kind == Kind::Const || kind == Kind::Field ||
           kind == Kind::Parameter;
}

// Whether a type stands behind the name.
bool IsTyped(std::string_view line, const korvel::Symbol& symbol) {
    const std::size_t next = line.find_first_not_of(' ', static_cast<std::size_t>(symbol.lastColumn));
    return next != std::string_view::npos && line[next] == ':';
}

}  // namespace

Json InlayHints(Workspace& workspace, const Json& params) {
    const std::string path = PathOfDocument(params);
    const Program& program = workspace.ProgramOf(path);
    const std::string file = SpellingOf(program, path);
    const int first = params.at("range").at("start").at("line").get<int>();
    const int last = params.at("range").at("end").at("line").get<int>();
    Json hints = Json::array();
    for (const korvel::Symbol& symbol : program.inspection.symbols) {
        const bool asked = symbol.file == file && first < symbol.line && symbol.line - 1 <= last;
        if (!asked || !IsVariable(symbol.kind) || symbol.type.empty() || symbol.firstColumn == 0) continue;
        if (IsTyped(workspace.LinesOf(path).Line(symbol.line - 1), symbol)) continue;
        hints.push_back(
            {{"position", workspace.RangeOf(symbol)["end"]}, {"label", ":" + symbol.type}, {"kind", 1}});
    }
    return hints;
}

}  // namespace lsp
