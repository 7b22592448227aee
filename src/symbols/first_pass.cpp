#include "symbols/first_pass.h"

#include <unordered_map>
#include <unordered_set>

#include "driver/report.h"
#include "driver/settings.h"
#include "symbols/first_pass_state.h"
#include "symbols/source_lines.h"

namespace {

void RefuseSplitEnd(FirstPass&, TokenSpan tokens) {
    const std::string word = Lower(tokens[1]);
    for (const char* block : {"Type", "Method", "Select"}) {
        if (word != Lower(block)) continue;
        ReportFatal(std::string("Syntax error: Use 'End") + block + "' instead of 'End " + block + "'");
    }
}

struct Rule {
    void (*collect)(FirstPass&, TokenSpan);
    std::size_t minimumTokens;
    bool outsideTypesOnly;
};

const std::unordered_map<std::string, Rule> rules = {
    {"import", {CollectImport, 2, false}},       {"linker", {CollectLinker, 2, false}},
    {"include", {CollectInclude, 2, false}},     {"end", {RefuseSplitEnd, 2, false}},
    {"precalc", {CollectPreCalc, 7, false}},     {"type", {CollectClass, 2, false}},
    {"element", {CollectClass, 2, false}},       {"endtype", {CollectEndClass, 1, false}},
    {"endelement", {CollectEndClass, 1, false}}, {"field", {CollectField, 1, false}},
    {"global", {CollectGlobal, 2, true}},        {"const", {CollectConst, 2, true}},
    {"method", {CollectMethod, 1, false}},       {"extern", {CollectExtern, 1, false}},
    {"endextern", {CollectExtern, 1, false}},    {"function", {CollectFunction, 2, true}},
    {"public", {CollectAccess, 1, false}},       {"private", {CollectAccess, 1, false}},
};

// The longest word of the table; longer first tokens need no look-up.
constexpr std::size_t longestRule = 10;

void CollectStatement(FirstPass& pass, TokenSpan tokens) {
    if (tokens[0].size() > longestRule) return;
    const auto rule = rules.find(Lower(tokens[0]));
    if (rule == rules.end() || tokens.size() < rule->second.minimumTokens) return;
    if (rule->second.outsideTypesOnly && pass.inType) return;
    rule->second.collect(pass, tokens);
}

void ReadLines(FirstPass& pass, Lexer& lexer) {
    SourceLines lines(lexer, Checking::Strict);
    if (!lines.Open(pass.source)) ReportFatal("Cannot read '" + pass.source + "'.");
    while (lines.Next()) {
        settings.currentFile = lexer.fileName;
        settings.currentLine = lexer.lineNumber;
        pass.line = lines.Line();
        for (const TokenSpan& statement : lines.Statements()) CollectStatement(pass, statement);
    }
    settings.currentFile = lexer.fileName;
    settings.currentLine = lines.LastCount();
}

// What the first run over an included file found, kept for its second run.
struct Collected {
    Declarations declarations;
    std::string mainName;
    int lastLine = 0;
};
std::unordered_map<std::string, Collected> collected;  // by path as opened

void Remember(const FirstPass& pass) {
    collected[pass.source] = {pass.out, pass.mainName, settings.currentLine};
}

// Types that were taken from initialisers may come out differently now that everything has been read.
void ForgetInferredType(std::unordered_map<std::string, Variable>& variables, const std::string& name) {
    const auto found = variables.find(name);
    if (found == variables.end() || found->second.typed || found->second.form != ArrayForm::None) return;
    found->second.type = ValueType();
}

bool Recall(FirstPass& pass) {
    const auto found = collected.find(pass.source);
    if (found == collected.end()) return false;
    pass.out = std::move(found->second.declarations);
    pass.mainName = found->second.mainName;
    settings.currentLine = found->second.lastLine;
    collected.erase(found);
    for (const std::string& name : pass.out.globalNames) ForgetInferredType(symbols.globals, name);
    for (const std::string& name : pass.out.constNames) ForgetInferredType(symbols.constants, name);
    return true;
}

void SaySummary(const Declarations& found) {
    VerboseNote("Found " + std::to_string(found.classes.size()) + " classes, " +
                std::to_string(found.functionCount) + " functions, " +
                std::to_string(found.typedGlobals.size()) + " globals (with types), and " +
                std::to_string(found.typedConsts.size()) + " constants (with types)");
}

}  // namespace

void CollectDeclarations(Lexer& lexer, const std::string& source, Declarations& out) {
    VerboseNote("First pass: Collecting declarations...");
    VerboseNote("  (Use 'Import \"filename.decls\"' to load userlib functions)");
    settings.currentFile = lexer.fileName;
    settings.currentLine = lexer.lineNumber;
    FirstPass pass(out, source);
    pass.again = !symbols.collectedFiles.insert(FileId(source)).second;
    if (!pass.again || !Recall(pass)) ReadLines(pass, lexer);
    const bool comesAgain = !pass.again && source != settings.mainSource && !settings.verbose;
    if (comesAgain) Remember(pass);
    FinishRoutines(pass);
    if (source == settings.mainSource) CheckElementCycles();
    SaySummary(out);
}

bool IsExecutableStatement(const std::string& word) {
    static const std::unordered_set<std::string> declarations = {
        "type",      "endtype",  "element",     "endelement", "field",  "method",
        "endmethod", "function", "endfunction", "global",     "const",  "local",
        "include",   "import",   "linker",      "useconsole", "extern", "endextern",
        "with",      "endwith",  "precalc",     "endprecalc",
    };
    return declarations.count(word) == 0;
}
