// What comes out of a Function; Methods look the same inside their class body:
//     int KVL_Twice (int KVL_n)
//     {
//     __kvSchedPoll();
//     ...
//     }
#include "statements/routines.h"
#include "statements/handlers.h"

#include <unordered_set>
#include <utility>

#include "base/debugger.h"
#include "base/report.h"
#include "base/settings.h"
#include "collect/parameters.h"
#include "lexer/lexer.h"
#include "linking/runtime_code.h"
#include "prelude/line_marks.h"
#include "statements/class_bodies.h"
#include "statements/debug_hooks.h"
#include "statements/debugger_hooks.h"
#include "statements/emit_lines.h"
#include "statements/end_of_file.h"
#include "statements/line_writer.h"
#include "statements/parts.h"
#include "statements/returns.h"
#include "statements/words.h"
#include "symbols/identifiers.h"
#include "symbols/mistakes.h"
#include "symbols/scopes.h"

namespace {

bool IsConstructor(const State& state) {
    return InMethod(state) && state.routine.declared->name == "constructor";
}
bool IsDestructor(const State& state) {
    return InMethod(state) && state.routine.declared->name == "destructor";
}

std::string RoutineName(TokenSpan tokens) {
    if (!IsName(tokens[1])) ReportFatal("Expected a name after '" + tokens[0] + "'", tokens.Slice(0, 1));
    return tokens[1];
}

// "Twice (int KVL_n)" or "Twice()".
std::string NameAndParameters(const Routine& routine, const std::string& cppName, bool withDefaults) {
    if (routine.parameters.empty()) return cppName + "()";
    return cppName + " " + ParameterText(routine, withDefaults);
}

void NeedValue(const ValueType& type) {
    if (type.base == Base::Element && !type.IsArray()) NeedClass(type.cls);
}

void DeclareParameters(const Routine& routine) {
    NeedValue(routine.result);
    for (const Parameter& parameter : routine.parameters) {
        Variable& variable = AddVarToScopeList(parameter.name, SafeName(parameter.name));
        variable.type = parameter.type;
        variable.typed = !parameter.untyped;
        variable.isParameter = true;
        if (parameter.type.IsArray()) variable.form = ArrayForm::Pointer;
        NeedValue(parameter.type);
    }
}

// An Extern function has no body, so nothing else is in the way of its parameters' names.
void CheckExternParameters(const std::string& name) {
    const Routine* routine = FindFunction(name);
    if (routine == nullptr) return;
    std::unordered_set<std::string> names;
    for (const Parameter& parameter : routine->parameters) {
        CheckExternParameter(parameter.name);
        if (!names.insert(parameter.name).second) FailDeclaredTwice(parameter.name);
    }
}

// Routines that call themselves must get as deep as without -fast, whose arrays are not in the frame. Inline
// C++ may count on vectors, and so do the hooks of debug builds.
std::size_t RoomForArrays(bool isMain) {
    constexpr std::size_t mainRoom = 4096, routineRoom = 256;
    if (!settings.fastMode || settings.debugMode || symbols.inlineCpp) return 0;
    return isMain ? mainRoom : routineRoom;
}

void Open(State& state, RoutineKind kind, const std::string& name, const Routine& declared, bool isMain) {
    OpenRoutine routine;
    routine.kind = kind;
    routine.name = name;
    routine.line = state.place.line;
    routine.declared = &declared;
    routine.isMain = isMain;
    routine.returnType = isMain ? "int" : ResultCppName(declared.result);
    routine.frameRoom = RoomForArrays(isMain);
    state.routine = std::move(routine);
    PushRoutineScope();
}

// A head that is wrong may name parameters that were not read.
void DoubtParameters(const std::string& name, TokenSpan head) {
    if (!IsDoubtful(WordOf(name))) return;
    for (std::size_t i = 1; i < head.size(); ++i)
        if (head.SignAt(i - 1) == '(' || head.SignAt(i - 1) == ',') Doubt(head.At(i));
}

// `after` stands between the opening brace and the poll.
void EmitOpening(State& state, const std::string& signature, const std::string& after) {
    MarkLine(state);
    Piece& piece = state.out->pieces.back();
    const auto behindText = [&piece] { return static_cast<std::uint32_t>(piece.text.size()); };
    piece.signatureAt = behindText() + static_cast<std::uint32_t>(state.place.indent);
    piece.signatureEnd = piece.signatureAt + static_cast<std::uint32_t>(signature.size());
    EmitLine(state, signature);
    piece.braceAt = behindText();
    MarkLine(state);  // debuggers take it for the beginning of the routine
    EmitLine(state, "{");
    piece.bodyAt = behindText();
    state.marked = {};  // calls may follow here
    EmitLines(state, after);
    EmitLine(state, "__kvSchedPoll();");
    if (state.routine.isMain) EmitLine(state, "\tstd::cout.precision(15);");
}

void EmitEnter(State& state, const std::string& name) {
    if (!settings.debugMode) return;
    if (state.routine.isMain) {
        EmitLine(state, "\t_kvDebugInit();");
        EmitLine(state, "\t_kvDebugSetGlobalReporter(&__kvReportGlobals);");
    }
    BeginDebuggerRoutine();
    const std::string entered = forDebugger ? DebuggerRoutineName(state) : name;
    EmitLine(state, "\t_kvDebugEnter(nullptr, nullptr, " + CppLiteral(entered) + ");");
}

void CheckFunctionName(const std::string& name, const Routine* routine, bool isMain) {
    if (routine == nullptr || IsClass(name)) FailAlreadyDefined(name);
    if (isMain && !routine->parameters.empty())
        ReportFatal("Function Main takes no parameters" +
                    Hint{"What stands behind the program's name gives Argument(1) of std/system.kvl"});
}

bool KeepsInstances(const State& state) { return state.cls != nullptr && !state.cls->isElement; }

void CheckWithClosed(const State& state, const std::string& closer) {
    if (state.withs.empty()) return;
    const Elsewhere opener = {settings.currentFile, state.withs.back().line, {}, openedHere, "EndWith"};
    ReportFatal("With block not closed - add EndWith before " + closer, {}, opener);
}

// The end of the routine, for a run that gets there without a Return.
void EmitFallingOut(State& state) {
    if (!state.routine.reachable) return;
    EmitFreeLoops(state);
    if (IsDestructor(state) && KeepsInstances(state)) EmitLines(state, LeavingLines());
}

// A caller gets the default value when no Return was met on the way.
void EmitDefaultResult(State& state) {
    if (state.routine.reachable && !state.routine.isMain && state.routine.returnType != "void")
        EmitLine(state, "return " + DefaultValue(state.routine.returnType) + ";");
}

void CloseRoutine(State& state) {
    EmitFallingOut(state);
    if (settings.debugMode) EmitLine(state, "\t_kvDebugLeave();");
    EmitDefaultResult(state);
    EmitLine(state, "}");
    LeaveBlocks(state);
    SettleText(state);
    PopRoutineScope();
    EndDoubtsOfRoutine();
    state.routine = {};
}

void CloseMain(State& state) {
    if (state.routine.hasReturn) {
        if (settings.debugMode && state.routine.reachable) EmitLine(state, "\t_kvDebugShutdown();");
        return;
    }
    if (settings.debugMode) EmitLine(state, "\t_kvDebugShutdown();");
    EmitFreeLoops(state);
    EmitLine(state, "return 0;");
    state.routine.localArrays.clear();
}

void CheckMethodKind(const State& state, const Routine& method) {
    if (method.name == "constructor" && state.access == "private")
        ReportFatal("Constructor access must be public");
    const bool special = method.name == "constructor" || method.name == "destructor";
    if (special && !method.result.Is(Base::Void)) ReportFatal("A " + method.name + " has no return type");
    if (method.name == "destructor" && !method.parameters.empty())
        ReportFatal("A destructor takes no parameters");
}

// Methods reach their object and its members by name.
void DeclareThis(const State& state) {
    Variable& self = AddOwnName("this");
    self.cppName = "this";
    self.type = Single(state.isElement ? Base::Element : Base::Object, state.cls);
    self.slot = state.isElement;
    self.typed = true;
    currentClass = state.cls;
}

// Whether support code or C++ itself calls the Method from outside its class, whoever may call it in Korvel.
bool IsCalledFromOutside(const Routine& method) {
    return method.name == "destructor" || (method.name == "Compare" && method.parameters.size() == 1);
}

void EmitAccessOf(State& state, const Routine& method) {
    const std::string written = state.access;
    if (IsCalledFromOutside(method)) state.access = "public";
    EmitAccess(state);
    state.access = written;
}

std::string ReportedName(const Routine& method, const std::string& className) {
    if (method.name == "constructor") return className;
    return method.name == "destructor" ? "~" + className : method.name;
}

// Lines between the opening brace of a Method and the poll.
std::string LinesBeforePoll(State& state, const Routine& method) {
    const bool registers = IsConstructor(state) && KeepsInstances(state);
    state.routine.watchesOwnObject = MayLoseObject(*state.cls, method);
    std::string lines = registers ? "_instances.push_back(this);\n" : "";
    if (state.routine.watchesOwnObject) lines += "KVMethodRun __kvRun(&_kvPresence);\n";
    return lines;
}

void BeginMethodPiece(State& state, const Routine& method) {
    const bool special = method.name == "constructor" || method.name == "destructor";
    const std::string result = special ? "" : ResultCppName(method.result) + " ";
    Piece& piece = BeginPiece(*state.out, Piece::Kind::Method, state.cls);
    DeclareParameters(method);
    piece.rest.Make().definitionHead =
        MarkOfPiece(*state.out) + result +
        NameAndParameters(method, state.cls->cppName + "::" + method.cppName, false);
    EmitOpening(state, result + NameAndParameters(method, method.cppName, true),
                LinesBeforePoll(state, method));
}

[[noreturn]] void FailNoReturn(const State& state, const Wording& subject) {
    const Wording result(state.routine.returnType, KorvelName(state.routine.declared->result));
    ReportFatal(subject + " with return type '" + result + "' must have a Return statement" +
                Hint{"Return hands the value back: Return 3"});
}

}  // namespace

void EmitRoutineLeaving(State& state) {
    if (!IsDestructor(state) || !KeepsInstances(state)) return;
    EmitLine(state, "{");
    EmitLines(state, LeavingLines());
    EmitLine(state, "}");
}

[[noreturn]] void FailStrayEnd(const std::string& message, const State& state, TokenSpan tokens) {
    const std::vector<UnclosedBlock> blocks = UnclosedExtern(state);
    if (!blocks.empty()) ReportFatal(message, blocks);
    const char* const hint = InMethod(state) ? "A Method ends with EndMethod"
                             : state.inType  ? "A Type ends with EndType, an Element with EndElement"
                                             : "No Function is open here";
    ReportFatal(message + Hint{hint}, tokens.Slice(0, 1), OpenAround(state));
}

// Function Name [: Type] [( parameters )] [: Type]
void TranslateFunction(State& state, TokenSpan tokens) {
    const std::string name = RoutineName(tokens);
    if (state.inExtern) return CheckExternParameters(name);
    if (state.inType || InFunction(state))
        ReportFatal("Unexpected 'function' token" +
                        Hint{"Functions stand outside of one another and of Types: close the one before"},
                    tokens.Slice(0, 1), OpenAround(state));
    const bool isMain = Lower(name) == "main";
    const Routine* routine = FindFunction(name);
    CheckFunctionName(name, routine, isMain);
    BeginPiece(*state.out, isMain ? Piece::Kind::Main : Piece::Kind::Function);
    Open(state, RoutineKind::Function, name, *routine, isMain);
    DoubtParameters(name, tokens);
    DeclareParameters(*routine);
    const std::string cppName = isMain ? "main" : routine->cppName;
    EmitOpening(state, state.routine.returnType + " " + NameAndParameters(*routine, cppName, true), "");
    EmitEnter(state, name);
}

// EndFunction
void TranslateEndFunction(State& state, TokenSpan tokens) {
    if (state.inType || !InFunction(state) || !state.routine.openParts.empty())
        FailStrayEnd("unexpected 'endfunction' token", state, tokens);
    RefuseMore(tokens, 1);
    CheckWithClosed(state, "EndFunction");
    if (state.routine.returnType != "void" && !state.routine.isMain && !state.routine.hasReturn)
        FailNoReturn(state, "Function '" + state.routine.name + "'");
    if (state.routine.isMain) CloseMain(state);
    CloseRoutine(state);
    BeginPiece(*state.out, Piece::Kind::Lines);
}

// Method Name [: Type] [( parameters )] [: Type]
void TranslateMethod(State& state, TokenSpan tokens) {
    if (!state.inType || InMethod(state))
        ReportFatal(
            "Unexpected 'method' token" +
                Hint{"Methods stand in a Type or Element, each behind the EndMethod of the one before"},
            tokens.Slice(0, 1), OpenAround(state));
    if (state.inExtern) return;
    const std::string name = RoutineName(tokens);
    const Routine* method = FindMethod(*state.cls, name);
    if (method == nullptr) FailAlreadyDefined(name);
    CheckMethodKind(state, *method);
    EmitAccessOf(state, *method);
    Open(state, RoutineKind::Method, ReportedName(*method, state.typeName), *method, false);
    DoubtParameters(name, tokens);
    DeclareThis(state);
    BeginMethodPiece(state, *method);
    EmitEnter(state, state.typeName + "\\" + state.routine.name);
}

// EndMethod
void TranslateEndMethod(State& state, TokenSpan tokens) {
    if (state.inExtern && state.inType) return;
    if (!state.inType || !InMethod(state) || !state.routine.openParts.empty())
        ReportFatal("unexpected 'endmethod' token" + Hint{"No Method is open here"});
    RefuseMore(tokens, 1);
    CheckWithClosed(state, "EndMethod");
    if (state.routine.returnType != "void" && !state.routine.hasReturn) FailNoReturn(state, "Method");
    CloseRoutine(state);
    currentClass = nullptr;
    BeginPiece(*state.out, Piece::Kind::ClassLines, state.cls);
}
