// What comes out for the debugger in a routine:
//     kvdebug::Local _kvShown_KVL_n("n", "Int", KVL_n);     stays until the block ends
//     _kvDebugStmt(12, "game.kvl");
// in a class body:
//     static const char* _kvDebugName() { return "TPlayer"; }
//     void _kvDebugFields(kvdebug::Items& _kvItems) {
//      _kvItems.Item("hp", "Int", KVL_hp);
//     }
// and behind the main file's code the table kvdebug::program.
#include "statements/debugger_hooks.h"

#include <algorithm>

#include "base/run.h"
#include "base/settings.h"
#include "linking/runtime_code.h"
#include "statements/program.h"
#include "statements/with.h"
#include "symbols/scopes.h"

namespace {

std::string ItemLine(const Variable& variable) {
    return "_kvItems.Item(" + CppLiteral(variable.name) + ", " + CppLiteral(KorvelName(variable.type)) +
           ", " + variable.cppName + ");";
}

// Where the statements of a routine stand.
struct StoppingPlaces {
    std::string routine, file;
    std::string lines;  // "12 13 17 "
    std::string names;  // what variables and Fields it has there
};
std::vector<StoppingPlaces> stops;  // of the run
std::vector<StoppingPlaces> withs;  // of no routine; the name is what `its` means there
const PartOfRun partOfRun(stops, withs);

std::size_t shownLocals = 0;  // of the open routine, in the order of their declarations
std::string shownNames;
const PartOfRun otherPartOfRun(shownLocals, shownNames);

bool IsVisible(const Variable& variable) {
    const auto& blocks = localDefList.back().leaves;
    return std::any_of(blocks.begin(), blocks.end(), [&](const ScopeBlock& block) {
        return std::any_of(block.variables.begin(), block.variables.end(),
                           [&](const ScopeBlock::Declaration& one) { return one.variable == &variable; });
    });
}

// The guard ends with its block, as the variable does.
void ShowNewLocals(State& state) {
    for (auto& all = localDefList.back().storage; shownLocals < all.size(); ++shownLocals) {
        const Variable& variable = all[shownLocals];
        if (variable.isConst || !IsVisible(variable)) continue;
        shownNames += variable.name + " ";
        EmitLine(state, "kvdebug::Local _kvShown_" + variable.cppName + "(" + CppLiteral(variable.name) +
                            ", " + CppLiteral(KorvelName(variable.type)) + ", " + variable.cppName + ");");
    }
}

// Words that stand between two parts of a block come out at the end of the first one, where a stop would mislead.
// Of several statements in a line the first one stands for all; closers of loops count, or some would never be met.
bool MayStopAt(const State& state, Keyword keyword) {
    if (Has(keyword, trait::divides) || keyword == Keyword::EndSelect || keyword == Keyword::EndIf)
        return false;
    const bool declares = Has(keyword, trait::declares) && keyword != Keyword::Local;
    const bool follows = state.place.inOneLineIf || state.place.statement > 0;
    return !declares && (!follows || Has(keyword, trait::closesBlock));
}

std::string FieldNames(const ClassInfo& cls) {
    std::string names;
    for (const Token field : cls.fields)
        if (const Variable* member = FindField(cls, field)) names += member->name + " ";
    return names;
}

void NoteWith(const State& state) {
    const std::string object = Spelling(state.withs.back().object);
    if (withs.empty() || withs.back().names != object || withs.back().file != settings.currentFile)
        withs.push_back({"", settings.currentFile, "", object});
    withs.back().lines += std::to_string(state.place.line) + " ";
}

void NoteStop(State& state) {
    if (!state.withs.empty()) NoteWith(state);
    const std::string name = DebuggerRoutineName(state);
    if (stops.empty() || stops.back().routine != name || stops.back().file != settings.currentFile)
        stops.push_back({name, settings.currentFile, "", ""});
    stops.back().lines += std::to_string(state.place.line) + " ";
    stops.back().names = shownNames + (InMethod(state) ? FieldNames(*currentClass) : "");
}

std::vector<const Variable*> GlobalVariables() {
    std::vector<const Variable*> all;
    for (const FileOutput& file : program.files) {
        for (const GlobalDefinition& global : file.globals)
            if (const Variable* variable = FindGlobal(global.name)) all.push_back(variable);
    }
    return all;
}

void PutList(FileOutput& out, const char* routine, bool ofConsts) {
    PutLine(out, std::string("static void ") + routine + "(kvdebug::Items& _kvItems) {");
    PutLine(out, "    (void)_kvItems;");
    for (const Variable* variable : GlobalVariables())
        if (variable->isConst == ofConsts) PutLine(out, "    " + ItemLine(*variable));
    PutLine(out, "}");
}

void PutPlaces(FileOutput& out, const StoppingPlaces& places) {
    PutLine(out, "    {" + CppLiteral(places.routine) + ", " + CppLiteral(places.file) + ", " +
                     CppLiteral(places.lines) + ", " + CppLiteral(places.names) + "},");
}

}  // namespace

std::string DebuggerRoutineName(const State& state) {
    return InMethod(state) ? state.typeName + "\\" + state.routine.declared->name : state.routine.name;
}

void BeginDebuggerRoutine() {
    shownLocals = 0;
    shownNames.clear();
}

void EmitDebuggerHook(State& state, Keyword keyword) {
    const bool divides = Has(keyword, trait::divides) || keyword == Keyword::EndSelect;
    if (!InRoutine(state) || divides) return;
    ShowNewLocals(state);
    if (!MayStopAt(state, keyword)) return;
    NoteStop(state);
    EmitLine(state, "_kvDebugStmt(" + std::to_string(state.place.line) + ", " +
                        CppLiteral(settings.currentFile) + ");");
}

void EmitFieldList(State& state, const ClassInfo& cls) {
    EmitLine(state, " static const char* _kvDebugName() { return " + CppLiteral(cls.name) + "; }");
    EmitLine(state, " void _kvDebugFields(kvdebug::Items& _kvItems) {");
    EmitLine(state, "  (void)_kvItems;");
    for (const Token field : cls.fields)
        if (const Variable* member = FindField(cls, field)) EmitLine(state, "  " + ItemLine(*member));
    EmitLine(state, " }");
}

void EmitDebuggerTables(FileOutput& out, const std::vector<const ClassInfo*>& types) {
    PutList(out, "__kvListGlobals", false);
    PutList(out, "__kvListConsts", true);
    PutLine(out, "static const kvdebug::Places _kvPlaces[] = {");
    for (const StoppingPlaces& places : stops) PutPlaces(out, places);
    for (const StoppingPlaces& places : withs) PutPlaces(out, places);
    StoppingPlaces everywhere;
    for (const Variable* variable : GlobalVariables()) everywhere.names += variable->name + " ";
    PutPlaces(out, everywhere);
    PutLine(out, "    {nullptr, nullptr, nullptr, nullptr}};");
    PutLine(out, "static const kvdebug::TypeRow _kvTypes[] = {");
    for (const ClassInfo* cls : types)
        PutLine(out, "    {" + CppLiteral(cls->name) + ", kvdebug::ListObjects<" + cls->cppName + ">},");
    PutLine(out, "    {nullptr, nullptr}};");
    PutLine(out,
            "const kvdebug::Program kvdebug::program = {_kvPlaces, _kvTypes, __kvListGlobals, "
            "__kvListConsts};");
}
