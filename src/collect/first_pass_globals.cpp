// Globals, Consts and PreCalc tables.
#include "base/report.h"
#include "base/settings.h"
#include "collect/first_pass_state.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"
#include "symbols/type_reader.h"

namespace {

// What differs between Global and Const.
struct Kind {
    const char* title;  // in the clash with a Field
    const char* note;   // in the verbose notes
    bool isConst;
};

constexpr Kind globalKind = {"Global variable", "global", false};
constexpr Kind constKind = {"Const", "const", true};

void RefuseFieldName(Token name, const Kind& kind) {
    const ClassInfo* const* owner = symbols.fieldOwners.Find(name);
    if (owner == nullptr) return;
    FailOnErrorStream("ERROR: " + std::string(kind.title) + " '" + name->text +
                          "' conflicts with already-declared Field '" + name->text + "' in Type " +
                          (*owner)->name + "\n  First come first served - the Field was declared first.",
                      Tokens{name});
}

bool IsTaken(Token name) {
    return symbols.globals.Has(name) || symbols.constants.Has(name) || symbols.functions.Has(name) ||
           symbols.userlibRoutines.Has(name) || IsClass(name);
}

void RememberName(FirstPass& pass, const std::string& name, const Kind& kind) {
    (kind.isConst ? pass.constants : pass.globals).insert(name);
    (kind.isConst ? pass.out.constNames : pass.out.globalNames).push_back(name);
}

void SayFound(const Variable& variable, const std::string& annotation, const Kind& kind) {
    if (!settings.verbose) return;
    const std::string start = std::string("  - Found ") + kind.note + ": " + variable.name;
    if (variable.typed) {
        Say(start + " : " + annotation + " (" + CppName(variable.type) + ")");
    } else {
        Say(start + " (type will be inferred)");
    }
}

void Register(Variable&& variable, const Kind& kind) {
    if (IsTaken(variable.name)) FailAlreadyDefined(variable.name);
    variable.isConst = kind.isConst;
    (kind.isConst ? symbols.constants : symbols.globals).Add(variable.name, std::move(variable));
}

void Collect(FirstPass& pass, TokenSpan tokens, const Kind& kind) {
    if (tokens.empty()) return;
    RefuseFieldName(tokens.At(0), kind);
    CheckName(tokens[0]);
    RememberName(pass, tokens[0], kind);
    Variable variable = ReadDeclaration(pass, tokens);
    SayFound(variable, variable.typed ? tokens[2] : "", kind);
    if (variable.typed) ++(kind.isConst ? pass.out.typedConsts : pass.out.typedGlobals);
    Register(std::move(variable), kind);
}

bool IsDoubleTable(const std::string& type) {
    return type == "Double" || type == "double" || type == "Float" || type == "float";
}

}  // namespace

Variable ReadDeclaration(const FirstPass& pass, TokenSpan tokens) {
    Variable variable;
    variable.name = tokens[0];
    variable.cppName = SafeName(tokens[0]);
    variable.file = pass.out.source;
    variable.line = pass.line;
    variable.typed = Is(tokens[1], ":");
    TypeNote note;
    note.end = 1;
    if (variable.typed) {
        note = ReadType(tokens, 2);
    } else if (Is(tokens[1], "[")) {
        note.type = Single(Base::Int);
        ReadSizes(tokens, 1, note);
    }
    variable.type = note.type;
    variable.sizes = note.sizes;
    if (note.type.IsArray()) variable.form = ArrayForm::Vector;
    if (Is(tokens[note.end], "=")) {
        const TokenSpan value = tokens.From(note.end + 1);
        variable.initialiser.assign(value.begin(), value.end());
    }
    return variable;
}

void CollectGlobal(FirstPass& pass, TokenSpan tokens) {
    for (const TokenSpan& part : tokens.From(1).SplitAt(',')) Collect(pass, part, globalKind);
}

void CollectConst(FirstPass& pass, TokenSpan tokens) {
    for (const TokenSpan& part : tokens.From(1).SplitAt(',')) Collect(pass, part, constKind);
}

// PreCalc name : type [ size ] [ size ] ...; malformed ones are reported where the block is evaluated.
void CollectPreCalc(FirstPass& pass, TokenSpan tokens) {
    if (!Is(tokens[2], ":") || !Is(tokens[4], "[")) return;
    Variable table;
    table.name = tokens[1];
    table.cppName = SafeName(table.name);
    table.type = Single(IsDoubleTable(tokens[3]) ? Base::Double : Base::Int);
    for (std::size_t at = 5; Is(tokens[at - 1], "[") && at < tokens.size(); at += 3) {
        table.sizes.push_back(tokens[at]);
        ++table.type.dims;
    }
    table.form = ArrayForm::Fixed;
    table.isPreCalc = true;
    table.typed = true;
    table.file = pass.out.source;
    table.line = pass.line;
    CheckName(table.name);
    if (pass.globals.insert(table.name).second) pass.out.globalNames.push_back(table.name);
    if (IsTaken(table.name)) FailAlreadyDefined(table.name);
    symbols.globals.Add(table.name, std::move(table));
}
