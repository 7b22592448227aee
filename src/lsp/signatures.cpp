// The parameters of the call that is being typed.
#include <algorithm>

#include "base/keywords.h"
#include "lexer/lexer.h"
#include "lsp/code.h"
#include "lsp/features.h"

namespace lsp {

namespace {

using Kind = korvel::Symbol::Kind;

// A bracket that is open at the place.
struct OpenBracket {
    std::size_t at = 0;
    char sign = '(';
    int commas = 0;
};

// The innermost one last. The first one stands for the statement: its call may do without brackets.
std::vector<OpenBracket> OpenBrackets(std::string_view text) {
    std::vector<OpenBracket> open = {{0, ' ', 0}};
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        inString = inString != (c == '"');
        if (inString) continue;
        if (c == '(' || c == '[') open.push_back({i, c, 0});
        if ((c == ')' || c == ']') && open.size() > 1) open.pop_back();
        if (c == ',') ++open.back().commas;
    }
    return open;
}

struct Call {
    std::string name;
    std::size_t end = 0;  // of the name, in the code
    bool isMember = false;
    int argument = 0;
    bool creates = false;  // the name is that of a Type behind Create
};

Call CallBefore(std::string_view code, std::size_t end, int argument) {
    const std::size_t last = code.substr(0, end).find_last_not_of(' ') + 1;
    const std::size_t start = StartOfWord(code.substr(0, last));
    const Keyword before = FindKeyword(Lower(LastWord(code.substr(0, start))));
    const bool isMember = start > 0 && (code[start - 1] == '\\' || code[start - 1] == '.');
    return {std::string(code.substr(start, last - start)), last, isMember, argument,
            Has(before, trait::creates)};
}

// Where the name at the front ends, the objects that it is called of included: `list[i]\Add`.
std::size_t EndOfName(std::string_view code) {
    int depth = 0;
    for (std::size_t i = std::min(code.find_first_not_of(' '), code.size()); i < code.size(); ++i) {
        depth += code[i] == '[' ? 1 : code[i] == ']' ? -1 : 0;
        if (depth == 0 && code[i] == ' ') return i;
    }
    return 0;
}

// The innermost first.
std::vector<Call> CallsAround(std::string_view code) {
    std::vector<Call> calls;
    const std::vector<OpenBracket> open = OpenBrackets(code);
    for (auto bracket = open.rbegin(); bracket != open.rend(); ++bracket) {
        const std::size_t end = bracket->sign == ' ' ? EndOfName(code) : bracket->at;
        if (bracket->sign != '[') calls.push_back(CallBefore(code, end, bracket->commas));
    }
    return calls;
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

Json SignatureOf(const std::string& label, const std::string& parameters,
                 const std::string& description = {}) {
    Json signature = {{"label", label}, {"parameters", ParametersOf(parameters)}};
    if (!description.empty()) signature["documentation"] = {{"kind", "markdown"}, {"value", description}};
    return signature;
}

// Of the Method that the object in front of the name has; of all Methods of that name where the object is not known.
bool Fits(const korvel::Symbol& symbol, const Call& call, const std::string& type) {
    if (call.creates)
        return symbol.kind == Kind::Method && symbol.owner == call.name && symbol.name == "constructor";
    if (symbol.name != call.name) return false;
    if (call.isMember) return symbol.kind == Kind::Method && (type.empty() || symbol.owner == type);
    return symbol.kind == Kind::Function || symbol.kind == Kind::Method;
}

// A function of the language, or a statement with a Sequence: the line by which the manual shows how it is called.
Json SignaturesInManual(const Services& services, const std::string& name) {
    const std::string text = services.explain(name);
    const bool isStatement = Has(FindKeyword(Lower(name)), trait::changesFirst) &&
                             text.find("    " + name + "(") == std::string::npos;
    const std::size_t start = text.find("    " + name + (isStatement ? " " : "("));
    Json signatures = Json::array();
    if (name.empty() || start == std::string::npos) return signatures;
    const std::string label = text.substr(start + 4, text.find('\n', start) - start - 4);
    signatures.push_back(SignatureOf(label, label.substr(name.size()) + (isStatement ? ")" : "")));
    return signatures;
}

Json SignaturesOf(Workspace& workspace, const Spot& spot, const Code& code, const Call& call) {
    const std::size_t sign = code.column + call.end - call.name.size();  // its column, of the "\"
    const bool isOnLine = call.isMember && sign <= spot.before.size();
    const std::string type =
        !isOnLine ? ""
                  : korvel::TypeAt(spot.program->inspection, spot.file, spot.line, static_cast<int>(sign));
    Json signatures = Json::array();
    for (const korvel::Symbol& symbol : spot.program->inspection.symbols)
        if (Fits(symbol, call, type))
            signatures.push_back(
                SignatureOf(DeclarationOf(symbol), symbol.parameters, DescriptionOf(workspace, symbol)));
    return signatures.empty() && !call.isMember ? SignaturesInManual(workspace.services, call.name)
                                                : signatures;
}

}  // namespace

Json SignatureHelp(Workspace& workspace, const Json& params) {
    const Spot spot = workspace.SpotOf(params);
    const Code code = CodeAt(workspace, spot);
    for (const Call& call : CallsAround(code.before)) {
        const Json signatures = SignaturesOf(workspace, spot, code, call);
        if (!signatures.empty())
            return {{"signatures", signatures}, {"activeSignature", 0}, {"activeParameter", call.argument}};
    }
    return nullptr;
}

}  // namespace lsp
