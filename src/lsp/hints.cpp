// What is told beside the text: the parameters of the call that is being typed, and types that are not written down.
#include <algorithm>

#include "lsp/features.h"
#include "lsp/uri.h"

namespace lsp {

namespace {

using Kind = korvel::Symbol::Kind;

// A bracket that is open at the place.
struct OpenBracket {
    std::size_t at = 0;
    char sign = '(';
    int commas = 0;
};

// The innermost open bracket last.
std::vector<OpenBracket> OpenBrackets(std::string_view text) {
    std::vector<OpenBracket> open;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        inString = inString != (c == '"');
        if (inString) continue;
        if (c == '(' || c == '[') open.push_back({i, c, 0});
        if ((c == ')' || c == ']') && !open.empty()) open.pop_back();
        if (c == ',' && !open.empty()) ++open.back().commas;
    }
    return open;
}

bool IsRoutine(const korvel::Symbol& symbol) {
    return symbol.kind == Kind::Function || symbol.kind == Kind::Method;
}

// The name of the call, and whether it is a member that is called.
struct Called {
    std::string name;
    bool isMember = false;
};

Called CalledAt(std::string_view before) {
    before = before.substr(0, before.find_last_not_of(' ') + 1);
    const auto start = std::find_if_not(before.rbegin(), before.rend(), IsOfWord).base();
    return {std::string(start, before.end()), start != before.begin() && *std::prev(start) == '\\'};
}

// "(a:Int, b:Int)" has the parts "a:Int" and "b:Int".
Json ParametersOf(const std::string& parameters) {
    Json labels = Json::array();
    std::size_t start = 1;
    bool inString = false;
    int depth = 0;
    for (std::size_t i = 1; i < parameters.size(); ++i) {
        const char c = parameters[i];
        inString = inString != (c == '"');
        if (inString) continue;
        if ((c == ',' || c == ')') && depth == 0) {
            if (i > start) labels.push_back({{"label", parameters.substr(start, i - start)}});
            start = std::min(parameters.find_first_not_of(' ', i + 1), parameters.size());
        }
        depth += c == '(' ? 1 : c == ')' ? -1 : 0;
    }
    return labels;
}

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

Json SignatureHelp(Workspace& workspace, const Json& params) {
    const Spot spot = workspace.SpotOf(params);
    const std::vector<OpenBracket> open = OpenBrackets(spot.before);
    if (open.empty() || open.back().sign != '(') return nullptr;
    const Called called = CalledAt(spot.before.substr(0, open.back().at));
    Json signatures = Json::array();
    for (const korvel::Symbol& symbol : spot.program->inspection.symbols) {
        const bool fits = IsRoutine(symbol) && symbol.name == called.name &&
                          (!called.isMember || symbol.kind == Kind::Method);
        if (fits)
            signatures.push_back(
                {{"label", DeclarationOf(symbol)}, {"parameters", ParametersOf(symbol.parameters)}});
    }
    if (signatures.empty()) return nullptr;
    return {{"signatures", signatures}, {"activeSignature", 0}, {"activeParameter", open.back().commas}};
}

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
