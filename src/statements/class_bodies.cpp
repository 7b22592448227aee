// What comes out of a Type:
//     class KVL_T
//     {
//     public:
//      static std::vector<KVL_T*> _instances;
//      ...Fields and Methods...
//      KVL_T() { _instances.push_back(this); }     the instance tracking, see prelude/texts
//      ...
//     };
//     std::vector<KVL_T*> KVL_T::_instances;
// and of an Element: a struct with its Fields, Methods and a member-wise operator==.
#include "statements/class_bodies.h"
#include "base/debugger.h"
#include "statements/handlers.h"

#include "base/report.h"
#include "base/settings.h"
#include "prelude/fill.h"
#include "prelude/support.h"
#include "prelude/texts.h"
#include "statements/debug_hooks.h"
#include "statements/debugger_hooks.h"
#include "statements/emit_lines.h"
#include "statements/end_of_file.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"

namespace {

void EmitBlankForTrace(State& state) {
    if (settings.traceMode) EmitLine(state, "");
}

void CloseClassState(State& state) {
    BeginPiece(*state.out, Piece::Kind::Lines);
    state.inType = false;
    state.access = "public";
    state.emittedAccess = "public";
    state.typeName.clear();
    state.cls = nullptr;
    state.lateValues.clear();
    state.isElement = false;
    currentClass = nullptr;
}

// Whether the user's own constructor serves `Create T` without arguments.
bool HasPlainConstructor(const ClassInfo& cls) {
    const Routine* constructor = FindMethod(cls, "constructor");
    return constructor != nullptr && NeedsNoArguments(*constructor);
}

void EmitPublic(State& state) {
    state.access = "public";
    EmitAccess(state);
}

// The last member of the class, which is made when all others are:
//      bool _kvLate = (KVL_a = KVL_Sum ( ), true);
void EmitLateValues(State& state) {
    if (!state.lateValues.empty()) EmitLine(state, " bool _kvLate = (" + state.lateValues + "true);");
}

void EmitTypeClosing(State& state, const ClassInfo& cls) {
    EmitPublic(state);
    EmitLateValues(state);
    if (forDebugger) EmitFieldList(state, cls);
    EmitLines(state, texts::classTracking);
    if (!HasPlainConstructor(cls)) EmitLines(state, Fill(texts::classConstructor, {{"C", cls.cppName}}));
    if (FindMethod(cls, "destructor") == nullptr) {
        EmitLine(state, " ~" + cls.cppName + "() {");
        EmitLines(state, LeavingLines());
        EmitLine(state, " }");
    }
    const std::string_view navigation =
        settings.fastMode ? texts::fastClassNavigation : texts::classNavigation;
    EmitLines(state, Fill(navigation, {{"C", cls.cppName}}));
}

// Under -fast the list and its members come from the base class.
void EmitOpening(State& state, const ClassInfo& cls) {
    const bool tracked = !state.isElement && settings.fastMode;
    EmitLine(state, (state.isElement ? "struct " : "class ") + cls.cppName +
                        (tracked ? " : public KVObject, public KVTracked<" + cls.cppName + ">" : ""));
    EmitLine(state, "{");
    if (state.isElement) return;
    EmitLine(state, "public:");
    if (!tracked) EmitLine(state, " static std::vector<" + cls.cppName + "*> _instances;");
    EmitLine(state, "");
    if (!WatchesPresence(cls)) return;
    RequireSupport(Support::Presence);
    EmitLine(state, " KVPresence _kvPresence;");
}

// A Sequence has no comparison of its own; its items have.
std::string FieldComparison(const ClassInfo& cls, const std::string& field) {
    const Variable* member = FindField(cls, field);
    std::string name = member != nullptr ? member->cppName : SafeName(field);
    if (member != nullptr && member->type.sequence) name += "._items";
    return "(" + name + " == o." + name + ")";
}

void EmitElementClosing(State& state, const ClassInfo& cls) {
    std::string comparison;
    for (const Token field : cls.fields)
        comparison += (comparison.empty() ? "" : " && ") + FieldComparison(cls, field);
    if (comparison.empty()) comparison = "true";
    EmitPublic(state);
    EmitLateValues(state);
    if (forDebugger) EmitFieldList(state, cls);
    if (FindMethod(cls, "constructor") != nullptr && !HasPlainConstructor(cls))
        EmitLine(state, " " + cls.cppName + "() {}");
    EmitLine(state, " bool operator==(const " + cls.cppName + "& o) const { return " + comparison + "; }");
    EmitLine(state, "};");
    EmitLine(state, "");
}

}  // namespace

std::string_view LeavingLines() { return settings.fastMode ? texts::fastClassLeaving : texts::classLeaving; }

void EmitAccess(State& state) {
    if (state.access == state.emittedAccess) return;
    EmitLine(state, state.access + ":");
    state.emittedAccess = state.access;
}

// Type Name | Element Name
void TranslateTypeOpener(State& state, TokenSpan tokens) {
    if (state.inType)
        ReportFatal(
            "Obscure type declaration" + Hint{"The one before has to end first, with EndType or EndElement"},
            {}, OpenAround(state));
    if (tokens.size() != 2)
        ReportFatal("Obscure type declaration" +
                    Hint{"It begins with the word and a name, alone: Type TName"});
    if (InFunction(state))
        ReportFatal("A Type or Element cannot be declared inside a Function", {}, OpenAround(state));
    const std::string& name = tokens[1];
    ClassInfo* cls = FindClass(name);
    // The first pass registers a class when its block is closed.
    const bool unclosed = cls != nullptr && !cls->registered;
    if (unclosed)
        cls = nullptr;
    else if (cls == nullptr)
        ReportFatal("Internal error: Class '" + name + "' not found in classList after first pass",
                    Tokens{name});
    CheckFileLevelName(name);
    state.inType = true;
    state.typeLine = state.place.line;
    state.typeName = name;
    state.cls = cls;
    state.isElement = tokens.KeywordAt(0) == Keyword::Element;
    state.passesOverType = unclosed || cls->sourceFile != settings.currentFile ||
                           cls->line != state.place.line || !state.emitted.insert(cls).second;
    if (state.passesOverType) return;
    if (state.inExtern) {
        EmitBlankForTrace(state);
        return;
    }
    BeginPiece(*state.out, Piece::Kind::ClassOpen, cls);
    EmitOpening(state, *cls);
    BeginPiece(*state.out, Piece::Kind::ClassLines, cls);
}

// EndType | EndElement
// They do not compare themselves with the opener: either ends whichever block is open.
void TranslateEndClass(State& state, TokenSpan tokens) {
    const std::string closer = tokens.KeywordAt(0) == Keyword::EndType ? "EndType" : "EndElement";
    if (!state.inType || !state.routine.openParts.empty())
        ReportFatal("Unexpected '" + closer + "' token." + Hint{"No Type or Element is open here"},
                    Tokens{closer});
    if (InMethod(state)) FailUnclosedMethod(state.routine.name, state.routine.line);
    if (state.inExtern) {
        EmitBlankForTrace(state);
    } else {
        BeginPiece(*state.out, Piece::Kind::ClassClose, state.cls);
        if (state.isElement)
            EmitElementClosing(state, *state.cls);
        else
            EmitTypeClosing(state, *state.cls);
    }
    CloseClassState(state);
}
