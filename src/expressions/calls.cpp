// Calls of Functions, Methods and userlib functions.
#include "base/report.h"
#include "expressions/defaults.h"
#include "expressions/in_order.h"
#include "expressions/sequence_walks.h"
#include "expressions/walk.h"
#include "expressions/writer.h"
#include "lexer/lexer.h"
#include "prelude/output.h"
#include "symbols/uses.h"

namespace {

Wording InParameter(const ValueType& type) {
    return {type.IsArray() ? ParameterCppName(type) : CppName(type), KorvelName(type)};
}

void CheckCount(const std::string& subject, const Routine& routine, std::size_t count) {
    std::size_t required = 0;
    for (const Parameter& parameter : routine.parameters) required += parameter.hasDefault ? 0 : 1;
    const std::size_t most = routine.parameters.size();
    if (count >= required && count <= most) return;
    const std::string number = std::to_string(most),
                      range = required == most ? number : std::to_string(required) + " to " + number;
    ReportFatal(
        subject + " expects " + Wording{number, range} + " parameter(s) but " + std::to_string(count) +
            " provided" +
            Hint{routine.name.empty() ? "The Type has no Method constructor, written in small letters" : ""},
        {}, {routine.file, routine.line, routine.name, declaredHere});
}

void CheckArgument(const std::string& subject, std::size_t index, const ValueType& type,
                   const Expr& argument) {
    RequireValue(argument);
    if (Assignable(type, argument.type)) return;
    ReportFatal(subject + " parameter " + std::to_string(index + 1) + " expects type " + InParameter(type) +
                    " but got " + InWords(argument.type) + Hint{ConversionHint(type, argument.type).hint},
                argument.source);
}

void NeedElement(const ValueType& type) {
    if (type.base == Base::Element && !type.IsArray()) NeedClass(type.cls);
}

// Whether "(" ... ")" holds all arguments of a call statement, and is not the first of several.
bool ParenthesesHoldAll(const Walk& walk) {
    const std::string& next = walk.tokens[walk.tokens.Behind(walk.at)];
    return next.empty() || next == "\\" || next == "." || next == "[" || next == "=";
}

Expr& ParseArgument(Walk& walk, bool forArray) {
    const std::size_t begin = walk.at;
    const std::size_t outerRow = walk.rowAt;
    walk.rowAt = forArray ? walk.at : std::string::npos;
    Expr& argument = ParseValue(walk);
    walk.rowAt = outerRow;
    argument.source = walk.Since(begin);
    return argument;
}

// Arguments up to the one that no comma follows.
PartList ParseList(Walk& walk) {
    const Routine* callee = walk.callee;
    walk.callee = nullptr;
    PartList arguments;
    do {
        const std::size_t i = arguments.size();
        const bool known = callee != nullptr && i < callee->parameters.size();
        arguments.Add(ParseArgument(walk, known && callee->parameters[i].type.IsArray()));
    } while (walk.Match(','));
    return arguments;
}

PartList ParseCallArguments(Walk& walk, const Routine& routine) {
    walk.callee = &routine;
    if (walk.PeekSign() == '(' && (!walk.callStatement || ParenthesesHoldAll(walk))) {
        walk.Take();
        return ParseArguments(walk);
    }
    if (walk.callStatement) return ParseBareArguments(walk);
    ReportFatal(SubjectOf(routine) + " is called with parentheses: " + routine.name + "(...)", walk.Taken());
}

// "KVL_a -> KVL_Draw ( 1 , 2 )", in order where that could be seen. The object comes before the arguments.
void WriteCallAtOnce(Code& out, const Expr& call) {
    const Routine& routine = *call.routine;
    InOrder inOrder;
    Code ordered;
    Code& text = call.ordered ? ordered : out;
    const Expr* object = call.object;
    if (call.named)
        Put(text, inOrder.NameObject(object->type, TextOf(*object)), AccessorOf(*object, false));
    else if (object != nullptr)
        Put(text, *object, AccessorOf(*object, object->kind == ExprKind::Fixed));
    Put(text, call.text, routine.cppName, " ( ");
    WriteArguments(text, call, routine, " , ", call.ordered ? &inOrder : nullptr);
    text += routine.parameters.empty() ? ")" : " )";
    if (call.ordered) inOrder.Write(out, ResultCppName(routine.result), ordered);
}

}  // namespace

PartList ParseArguments(Walk& walk) {
    if (walk.Match(')')) {
        walk.callee = nullptr;
        return {};
    }
    PartList arguments = InBrackets(walk, ParseList);
    walk.Expect(')');
    return arguments;
}

PartList ParseBareArguments(Walk& walk) {
    walk.callStatement = false;
    if (!walk.Done()) return ParseList(walk);
    walk.callee = nullptr;
    return {};
}

std::string SubjectOf(const Routine& routine) {
    if (routine.isUserlib) return "Userlib function '" + routine.name + "'";
    if (routine.owner != nullptr) return "Method '" + routine.owner->name + "::" + routine.name + "'";
    return "Function '" + routine.name + "'";
}

void CheckArguments(const std::string& subject, const Routine& routine, PartList& arguments) {
    CheckCount(subject, routine, arguments.size());
    const Expr* argument = arguments.First();
    for (std::size_t i = 0; i < routine.parameters.size(); ++i) {
        const Parameter& parameter = routine.parameters[i];
        NeedElement(parameter.type);
        if (argument != nullptr) {
            CheckArgument(subject, i, parameter.type, *argument);
            CheckPassed(*argument, parameter.type);
            argument = argument->next;
        } else {
            arguments.Add(TranslateDefault(routine, parameter, arguments.First()));
        }
    }
}

void WriteArguments(Code& out, const Expr& call, const Routine& routine, const char* separator,
                    InOrder* inOrder) {
    const Parameter* parameter = routine.parameters.data();
    for (const Expr& argument : PartsOf(call)) {
        const ValueType& type = parameter++->type;
        if (&argument != call.first) out += separator;
        if (inOrder == nullptr || !argument.given || !type.IsKnown()) {
            WritePassed(out, argument, type);
        } else if (!type.IsSingle()) {
            WritePassed(out, argument, type, *inOrder);
        } else {
            Code text;
            WritePassed(text, argument, type);
            out += inOrder->Name(type, text);
        }
    }
}

Expr& ParseCall(Walk& walk, const Routine& routine, const char* prefix, Expr* object) {
    if (routine.owner == nullptr && Lower(routine.name) == "main")
        ReportFatal("'" + routine.name + "' cannot be called", walk.Taken());
    const TokenSpan called = walk.Taken();
    NoteUse(called, routine);
    PartList arguments = ParseCallArguments(walk, routine);
    About(called, [&] { CheckArguments(SubjectOf(routine), routine, arguments); });
    Expr& call = NewNode(ExprKind::Call, routine.result);
    if (call.type.IsArray())
        call.form = routine.isExtern || routine.isUserlib ? ArrayForm::Pointer : ArrayForm::Owned;
    call.isCall = call.effects = true;
    call.routine = &routine;
    call.text = prefix;
    call.object = object;
    call.first = arguments.First();
    NeedElement(routine.result);
    return call;
}

void WriteCall(Code& out, const Expr& call) {
    const AwayWalks away = AwayFromCall(*call.routine, call.first);
    BeginAway(out, away);
    WriteCallAtOnce(out, call);
    EndAway(out, away);
}
