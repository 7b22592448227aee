#include "collect/first_pass.h"

#include "base/report.h"
#include "base/settings.h"
#include "collect/first_pass_state.h"
#include "lexer/source_lines.h"
#include "symbols/identifiers.h"
#include "symbols/mistakes.h"
#include "symbols/modules.h"

namespace {

void RefuseSplitEnd(FirstPass&, TokenSpan tokens) {
    const std::string word = Lower(tokens[1]);
    for (const char* block : {"Type", "Method", "Select"}) {
        if (word != Lower(block)) continue;
        ReportFatal(std::string("Syntax error: Use 'End") + block + "' instead of 'End " + block + "'");
    }
}

struct Rule {
    void (*collect)(FirstPass&, TokenSpan) = nullptr;
    std::size_t minimumTokens = 0;
    bool outsideTypesOnly = false;
};

struct RuleRow {
    Keyword keyword;
    Rule rule;
};

const RuleRow rules[] = {
    {Keyword::Import, {CollectImport, 2, false}},       {Keyword::Linker, {CollectLinker, 2, false}},
    {Keyword::Include, {CollectInclude, 2, false}},     {Keyword::End, {RefuseSplitEnd, 2, false}},
    {Keyword::PreCalc, {CollectPreCalc, 7, false}},     {Keyword::Type, {CollectClass, 2, false}},
    {Keyword::Element, {CollectClass, 2, false}},       {Keyword::EndType, {CollectEndClass, 1, false}},
    {Keyword::EndElement, {CollectEndClass, 1, false}}, {Keyword::Field, {CollectField, 1, false}},
    {Keyword::Global, {CollectGlobal, 2, true}},        {Keyword::Const, {CollectConst, 2, true}},
    {Keyword::Method, {CollectMethod, 1, false}},       {Keyword::Extern, {CollectExtern, 1, false}},
    {Keyword::EndExtern, {CollectExtern, 1, false}},    {Keyword::Function, {CollectFunction, 2, true}},
    {Keyword::Public, {CollectAccess, 1, false}},       {Keyword::Private, {CollectAccess, 1, false}},
};

// The rules by keyword; most have none.
const Rule& RuleOf(Keyword keyword) {
    static const std::vector<Rule> index = [] {
        std::vector<Rule> table(keywordCount);
        for (const RuleRow& row : rules) table[IndexOf(row.keyword)] = row.rule;
        return table;
    }();
    return index[IndexOf(keyword)];
}

void CollectStatement(FirstPass& pass, TokenSpan tokens) {
    const Rule& rule = RuleOf(tokens.KeywordAt(0));
    if (rule.collect == nullptr || tokens.size() < rule.minimumTokens) return;
    if (rule.outsideTypesOnly && pass.inType) return;
    rule.collect(pass, tokens);
}

// Behind a wrong head there is a routine all the same.
void CollectUnknownRoutine(FirstPass& pass, TokenSpan tokens) {
    const Keyword keyword = tokens.KeywordAt(0);
    if (!IsName(tokens[1]) || pass.inExtern) return;
    Routine routine;
    routine.name = tokens[1];
    routine.cppName = SafeName(routine.name);
    routine.file = pass.out.source;
    routine.line = pass.line;
    if (keyword == Keyword::Function && !pass.inType) symbols.functions.Add(routine.name, routine);
    if (keyword == Keyword::Method && pass.inType && pass.open.routines.Add(routine.name, routine).second)
        pass.open.methods.push_back(routine.name);
}

// Too much is unknown without another file.
bool NamesFile(Keyword keyword) { return keyword == Keyword::Include || keyword == Keyword::Import; }

void CollectOrRecover(FirstPass& pass, TokenSpan tokens) {
    try {
        CollectStatement(pass, tokens);
    } catch (const Stop& stop) {
        if (NamesFile(tokens.KeywordAt(0))) throw;
        KeepMistake(stop, tokens);
        CollectUnknownRoutine(pass, tokens);
    }
}

void ReadLines(FirstPass& pass) {
    SourceLines lines(Reading::FirstPass);
    const bool counts = !IsModule(pass.out.source);
    if (!lines.Open(pass.out.source)) {
        RefuseNoFile(pass.out.source);
        ReportFatal("Cannot read '" + pass.out.source + "'.");
    }
    settings.currentFile = pass.out.source;
    while (pass.goesOn && lines.Next()) {
        settings.currentLine = lines.Count();
        pass.line = lines.Line();
        if (counts && lines.MetInlineCpp()) symbols.inlineCpp = true;
        for (const TokenSpan statement : lines.Statements()) CollectOrRecover(pass, statement);
    }
    if (counts && lines.MetInlineCpp()) symbols.inlineCpp = true;
    settings.currentFile = pass.out.source;
    settings.currentLine = pass.out.lastLine = lines.Count();
}

void SaySummary(const Declarations& found) {
    VerboseNote("Found " + std::to_string(found.classes.size()) + " classes, " +
                std::to_string(found.functionCount) + " functions, " + std::to_string(found.typedGlobals) +
                " globals (with types), and " + std::to_string(found.typedConsts) +
                " constants (with types)");
}

}  // namespace

bool CollectDeclarations(Declarations& out, IncludeFollower follow) {
    VerboseNote("First pass: Collecting declarations...");
    VerboseNote("  (Use 'Import \"filename.decls\"' to load userlib functions)");
    settings.currentFile = out.source;
    settings.currentLine = 0;
    FirstPass pass(out, follow);
    ReadLines(pass);
    out.functions.shrink_to_fit();
    SaySummary(out);
    return pass.goesOn;
}
