// What comes out:
//     int KVL_a = 5;                       Local, and Global in the header
//      const int KVL_MAX = 10;             Const, in the header
//      std::string KVL_name = "";          Field
#include "statements/handlers.h"

#include <algorithm>

#include "base/report.h"
#include "lexer/lexer.h"
#include "statements/class_bodies.h"
#include "statements/definition.h"
#include "statements/emit_lines.h"
#include "statements/end_of_file.h"
#include "statements/shadowing.h"
#include "symbols/scopes.h"
#include "symbols/type_reader.h"

namespace {

void CheckPlace(const State& state, DefinitionKind kind) {
    const bool inRoutine = InRoutine(state);
    if (kind == DefinitionKind::Local && !inRoutine)
        ReportFatal("Syntax error: 'Local' can only be declared inside a Function or Method" +
                        Hint{state.inType ? "Here it is a Field" : "What all Functions know is a Global"},
                    UnclosedExtern(state));
    if (kind == DefinitionKind::Global && (inRoutine || state.inType))
        ReportFatal(
            "Syntax error: 'Global' can only be declared in global scope (outside Functions, Methods, and "
            "Types)" +
            Hint{"Functions know all Globals. A variable of their own is a Local"});
    if (kind == DefinitionKind::Const && state.inType)
        ReportFatal("Syntax error: 'Const' cannot be declared inside a Type");
    if (kind == DefinitionKind::Const && InFunction(state))
        ReportFatal("Syntax error: 'Const' cannot be declared inside a Function" +
                    Hint{"Write it outside, for all Functions; or Local"});
    if (kind == DefinitionKind::Field && (!state.inType || InMethod(state)))
        ReportFatal("Syntax error: 'Field' can only be declared inside a Type");
}

void DeclareLocal(State& state, TokenSpan tokens) {
    const Definition definition = CreateDefinition(state, tokens, DefinitionKind::Local);
    EmitLines(state, definition.before);
    EmitLine(state, definition.text);
    EmitLines(state, definition.after);
    if (!definition.registration.empty()) EmitLine(state, definition.registration);
    NoteNameApart(state, definition.name, definition.cppName);
}

void DeclareField(State& state, TokenSpan tokens) {
    if (state.inExtern) return;
    EmitAccess(state);
    currentClass = state.cls;
    const Definition definition = CreateDefinition(state, tokens, DefinitionKind::Field);
    currentClass = nullptr;
    EmitLine(state, " ", definition.text);
    if (!definition.late.text.empty()) state.lateValues += definition.late.text + ", ";
}

void NoteMentioned(FileOutput& out, const ClassInfo* cls) {
    std::vector<const ClassInfo*>& list = out.classesInHeader;
    if (cls != nullptr && std::find(list.begin(), list.end(), cls) == list.end()) list.push_back(cls);
}

void DeclareInHeader(State& state, TokenSpan tokens, DefinitionKind kind) {
    GlobalDefinition global;
    std::vector<const ClassInfo*>* outer = CollectNeedsInto(&global.needs);
    const Definition definition = CreateDefinition(state, tokens, kind);
    CollectNeedsInto(outer);
    const bool isConst = kind == DefinitionKind::Const;
    global.name = definition.name;
    const std::string qualifier = isConst ? " const " : "";
    global.plain = definition.before.text + qualifier + definition.text.text;
    global.definition = qualifier + definition.moved;
    global.declaration = definition.declaration;
    if (isConst && !global.declaration.empty())
        global.declaration.insert(std::string("extern ").size(), "const ");
    global.sizeNames = definition.sizeNames;
    global.needsPrelude = definition.usesPrelude;
    global.constant = definition.constant;
    global.again = definition.again;
    global.empty = definition.empty;
    NoteMentioned(*state.out, definition.mentioned);
    PutGlobal(*state.out, std::move(global));
}

DefinitionKind KindOf(Keyword keyword) {
    if (keyword == Keyword::Local) return DefinitionKind::Local;
    if (keyword == Keyword::Global) return DefinitionKind::Global;
    return keyword == Keyword::Const ? DefinitionKind::Const : DefinitionKind::Field;
}

}  // namespace

// Local | Global | Const | Field  name [: Type [[size]...]] [= value] , ...
void TranslateDeclaration(State& state, TokenSpan tokens) {
    const DefinitionKind kind = KindOf(tokens.KeywordAt(0));
    CheckPlace(state, kind);
    if (tokens.size() < 2) ReportFatal("Expected a name after '" + tokens[0] + "'", tokens.Slice(0, 1));
    for (const TokenSpan& part : tokens.From(1).SplitAt(',')) {
        if (kind == DefinitionKind::Local)
            DeclareLocal(state, part);
        else if (kind == DefinitionKind::Field)
            DeclareField(state, part);
        else
            DeclareInHeader(state, part, kind);
    }
}
