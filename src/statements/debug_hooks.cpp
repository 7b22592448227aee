#include "statements/debug_hooks.h"

#include <algorithm>
#include <unordered_set>

#include "analysis/reach.h"
#include "base/debugger.h"
#include "base/settings.h"
#include "linking/runtime_code.h"
#include "prelude/line_marks.h"
#include "statements/debugger_hooks.h"
#include "statements/program.h"
#include "symbols/scopes.h"

namespace {

// What a debugger is shown of a variable; `name` is its C++ text.
std::string ShownValue(const Variable& variable, const std::string& name) {
    if (variable.type.IsArray()) return "\"[array]\"";
    if (variable.type.sequence || variable.slot) return "\"[object]\"";
    switch (variable.type.base) {
        case Base::Object:
        case Base::Pointer:
        case Base::AnyObject:
            return "(" + name + " == nullptr ? \"null\" : \"valid\")";
        case Base::Int:
        case Base::Long:
        case Base::Short:
        case Base::Double:
            return "std::to_string(" + name + ").c_str()";
        case Base::String:
            return name + ".c_str()";
        default:
            return "\"[object]\"";
    }
}

std::string Report(const Variable& variable, const std::string& name, int kind) {
    return "_kvDebugVar(" + CppLiteral(variable.name) + ", " + CppLiteral(CppName(variable.type)) + ", " +
           ShownValue(variable, name) + ", " + std::to_string(kind) + ");";
}

void ReportLocals(State& state) {
    for (const ScopeBlock& block : localDefList.back().leaves)
        for (const auto& [variable, visible, before] : block.variables)
            if (variable->name != "this" && visible->variable == variable)
                EmitLine(state, Report(*variable, variable->cppName, 1));
}

void ReportOwnFields(State& state) {
    if (!InMethod(state) || state.cls == nullptr || state.cls->fields.empty()) return;
    EmitLine(state,
             state.routine.watchesOwnObject ? "if(__kvRun.object != nullptr) {" : "if(this != nullptr) {");
    for (const Token field : state.cls->fields)
        if (const Variable* member = FindField(*state.cls, field))
            EmitLine(state, Report(*member, "this->" + member->cppName, 3));
    EmitLine(state, "}");
}

// The Types that keep an instance list: those whose class body is compiled. Elements keep none, and Types
// declared in an Extern block or a .kvh folder have their bodies elsewhere.
std::vector<const ClassInfo*> ListedTypes() {
    std::unordered_set<const ClassInfo*> compiled;
    for (const FileOutput& file : program.files) {
        if (file.headerOnly) continue;
        for (const Piece& piece : file.pieces)
            if (piece.kind == Piece::Kind::ClassOpen) compiled.insert(piece.cls);
    }
    std::vector<const ClassInfo*> types;
    for (const ClassInfo* cls : symbols.classList)
        if (!cls->isElement && compiled.count(cls) != 0) types.push_back(cls);
    return types;
}

std::string TypeTest(const ClassInfo& cls) {
    return "    if (strcmp(typeName, " + CppLiteral(cls.name) + ") == 0) ";
}

void PutEnumeration(FileOutput& out, const std::vector<const ClassInfo*>& types) {
    PutLine(out, "// Debug: Type enumeration functions");
    PutLine(out, "void _kvEnumerateTypes(void (*callback)(const char* typeName)) {");
    for (const ClassInfo* cls : types) PutLine(out, "    callback(" + CppLiteral(cls->name) + ");");
    PutLine(out, "}");
    PutLine(out, "int _kvGetTypeInstanceCount(const char* typeName) {");
    for (const ClassInfo* cls : types)
        PutLine(out, TypeTest(*cls) + "return " + cls->cppName + "::_instances.size();");
    PutLine(out, "    return 0;");
    PutLine(out, "}");
}

// Private Fields are named but not read: the function stands outside the class.
void PutFieldCallbacks(FileOutput& out, const ClassInfo& cls) {
    for (const Token field : cls.fields) {
        const Variable* member = FindField(cls, field);
        if (member == nullptr) continue;
        std::string value =
            member->isPrivate ? "\"[private]\"" : ShownValue(*member, "inst->" + member->cppName);
        PutLine(out, "            callback(" + CppLiteral(field) + ", " + CppLiteral(CppName(member->type)) +
                         ", " + value + ");");
    }
}

void PutFieldReader(FileOutput& out, const std::vector<const ClassInfo*>& types) {
    PutLine(out, "void _kvGetTypeInstanceFields(const char* typeName, int instanceIndex,");
    PutLine(out,
            "                               void (*callback)(const char* name, const char* type, const char* "
            "value)) {");
    for (const ClassInfo* cls : types) {
        const std::string& name = cls->cppName;
        PutLine(out, TypeTest(*cls) + "{");
        PutLine(out,
                "        if (instanceIndex >= 0 && instanceIndex < (int)" + name + "::_instances.size()) {");
        PutLine(out, "            " + name + "* inst = " + name + "::_instances[instanceIndex];");
        PutLine(out, "            if (inst == nullptr) return;");
        PutFieldCallbacks(out, *cls);
        PutLine(out, "        }");
        PutLine(out, "        return;");
        PutLine(out, "    }");
    }
    PutLine(out, "}");
}

void PutGlobalReporter(FileOutput& out) {
    PutLine(out, "void __kvReportGlobals() {");
    for (const FileOutput& file : program.files) {
        for (const GlobalDefinition& global : file.globals) {
            const Variable* variable = FindGlobal(global.name);
            if (variable != nullptr && !variable->isConst)
                PutLine(out, "    " + Report(*variable, variable->cppName, 0));
        }
    }
    PutLine(out, "}");
}

}  // namespace

bool MayLoseObject(const ClassInfo& cls, const Routine& method) {
    return settings.debugMode && !cls.isElement && !cls.fields.empty() && RoutineMayRemove(method.name);
}

bool WatchesPresence(const ClassInfo& cls) {
    return std::any_of(cls.methods.begin(), cls.methods.end(), [&](Token name) {
        const Routine* method = FindMethod(cls, name);
        return method != nullptr && MayLoseObject(cls, *method);
    });
}

void EmitStatementHook(State& state, Keyword keyword) {
    bool label = keyword == Keyword::Case || keyword == Keyword::Default || keyword == Keyword::EndSelect;
    bool firstLabel = state.beforeFirstCase && label;
    state.beforeFirstCase = keyword == Keyword::Select;
    bool inRoutine = InRoutine(state);
    if (!inRoutine || firstLabel) return;
    EmitLine(state, "_kvDebugStmt(" + std::to_string(state.place.line) + ", " +
                        CppLiteral(settings.currentFile) + ");");
    ReportLocals(state);
    ReportOwnFields(state);
    EmitLine(state, "_kvDebugPause();");
}

void EmitTypeEnumeration(FileOutput& out) {
    BeginPiece(out, Piece::Kind::Lines);
    if (settings.lineMarks) out.pieces.back().text += OwnCodeMark();
    std::vector<const ClassInfo*> types = ListedTypes();
    PutEnumeration(out, types);
    PutFieldReader(out, types);
    PutGlobalReporter(out);
    if (forDebugger) EmitDebuggerTables(out, types);
}
