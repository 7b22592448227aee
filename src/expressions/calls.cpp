// Calls of Functions, Methods and userlib functions.
#include "base/report.h"
#include "collect/parameters.h"
#include "expressions/in_order.h"
#include "expressions/sequence_walks.h"
#include "lexer/lexer.h"
#include "prelude/output.h"
#include "symbols/uses.h"

namespace {

std::string Spelling(const ValueType& type) {
    return type.IsArray() ? ParameterCppName(type) : CppName(type);
}

void CheckCount(const std::string& subject, const Routine& routine, std::size_t count) {
    std::size_t required = 0;
    for (const Parameter& parameter : routine.parameters) required += parameter.hasDefault ? 0 : 1;
    const std::size_t most = routine.parameters.size();
    if (count >= required && count <= most) return;
    ReportFatal(subject + " expects " + std::to_string(most) + " parameter(s) but " + std::to_string(count) +
                " provided");
}

void CheckArgument(const std::string& subject, std::size_t index, const ValueType& type,
                   const Expr& argument) {
    RequireValue(argument);
    if (Assignable(type, argument.type)) return;
    const std::string got = argument.type.IsArray() ? CppName(argument.type) : Spelling(argument.type);
    ReportFatal(subject + " parameter " + std::to_string(index + 1) + " expects type " + Spelling(type) +
                    " but got " + got,
                argument.source);
}

void NeedElement(const ValueType& type) {
    if (type.base == Base::Element && !type.IsArray()) NeedClass(type.cls);
}

// Whether "(" ... ")" holds all arguments of a call statement, and is not the first of several.
bool ParenthesesHoldAll(const Walk& walk) {
    int open = 0;
    std::size_t i = walk.at;
    for (; i < walk.tokens.size(); ++i) {
        if (Is(walk.tokens[i], "(")) ++open;
        if (Is(walk.tokens[i], ")") && --open == 0) break;
    }
    const std::string& next = walk.tokens[i + 1];
    return next.empty() || next == "\\" || next == "." || next == "[" || next == "=";
}

Expr ParseArgument(Walk& walk, bool forArray) {
    const std::size_t begin = walk.at;
    const std::size_t calls = callCount;
    const std::size_t outerRow = walk.rowAt;
    walk.rowAt = forArray ? walk.at : std::string::npos;
    Expr argument = ParseValue(walk);
    walk.rowAt = outerRow;
    argument.effects = callCount != calls;
    argument.source = walk.tokens.Slice(begin, walk.at);
    return argument;
}

// Arguments up to the one that no comma follows.
std::vector<Expr> ParseList(Walk& walk) {
    const Routine* callee = walk.callee;
    walk.callee = nullptr;
    std::vector<Expr> arguments;
    do {
        const std::size_t i = arguments.size();
        arguments.push_back(ParseArgument(walk, callee != nullptr && i < callee->parameters.size() &&
                                                    callee->parameters[i].type.IsArray()));
    } while (walk.Match(','));
    return arguments;
}

std::string CallText(const std::string& callee, const std::vector<std::string>& arguments) {
    std::string text = callee + " (";
    const char* separator = " ";
    for (const std::string& argument : arguments) {
        text += separator + argument;
        separator = " , ";
    }
    return text + " )";
}

// The object comes before the arguments.
std::string CallInOrder(const Expr* object, const std::string& name, const Routine& routine,
                        const std::vector<Expr>& arguments, std::vector<std::string> texts) {
    InOrder inOrder;
    std::string callee;
    if (object != nullptr) {
        const bool named = OrderMatters(*object, arguments);
        callee = WithAccessor(*object, named ? inOrder.NameObject(object->text) : object->text);
    }
    NameArguments(inOrder, routine, arguments, texts);
    return inOrder.Text(ResultCppName(routine.result), CallText(callee + name, texts));
}

std::vector<Expr> ParseCallArguments(Walk& walk, const Routine& routine) {
    walk.callee = &routine;
    if (walk.PeekSign() == '(' && (!walk.callStatement || ParenthesesHoldAll(walk))) {
        walk.Take();
        return ParseArguments(walk);
    }
    if (walk.callStatement) return ParseBareArguments(walk);
    ReportFatal(SubjectOf(routine) + " is called with parentheses: " + routine.name + "(...)");
}

}  // namespace

std::vector<Expr> ParseArguments(Walk& walk) {
    const bool statement = walk.callStatement;
    walk.callStatement = false;
    std::vector<Expr> arguments;
    if (walk.Match(')')) {
        walk.callee = nullptr;
    } else {
        arguments = ParseList(walk);
        walk.Expect(')');
    }
    walk.callStatement = statement;
    return arguments;
}

bool TakesBareArguments(const Walk& walk) {
    const std::string& next = walk.Peek();
    const bool member = next == "\\" || (next == "." && IsIdentifier(walk.Peek(1)));
    return walk.callStatement && !member && next != "[";
}

std::vector<Expr> ParseBareArguments(Walk& walk) {
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

std::string WithAccessor(const Expr& object, const std::string& text) {
    const bool pointer = object.type.base != Base::Element || object.slot;
    return text + (text == "this" ? "" : " ") + (pointer ? "-> " : ". ");
}

std::vector<std::string> CheckedArguments(const std::string& subject, const Routine& routine,
                                          const std::vector<Expr>& arguments) {
    CheckCount(subject, routine, arguments.size());
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < routine.parameters.size(); ++i) {
        const Parameter& parameter = routine.parameters[i];
        NeedElement(parameter.type);
        if (i < arguments.size()) {
            CheckArgument(subject, i, parameter.type, arguments[i]);
            texts.push_back(ArgumentText(arguments[i], parameter.type));
        } else {
            texts.push_back(ArgumentText(TranslateDefault(routine, parameter), parameter.type));
        }
    }
    return texts;
}

Expr ParseCall(Walk& walk, const Routine& routine, const std::string& prefix, const Expr* object) {
    if (routine.owner == nullptr && Lower(routine.name) == "main")
        ReportFatal("'" + routine.name + "' cannot be called", walk.Taken());
    const TokenSpan called = walk.Taken();
    NoteUse(called, routine);
    const std::vector<Expr> arguments = ParseCallArguments(walk, routine);
    const std::vector<std::string> texts =
        About(called, [&] { return CheckedArguments(SubjectOf(routine), routine, arguments); });
    const std::string name = prefix + routine.cppName;
    Expr call;
    const bool ordered = OrderMatters(arguments);
    const std::string callee = object == nullptr ? name : WithAccessor(*object, object->text) + name;
    call.text = CallWhileAway(
        routine, arguments,
        ordered ? CallInOrder(object, name, routine, arguments, texts) : CallText(callee, texts));
    call.type = routine.result;
    if (call.type.IsArray())
        call.form = routine.isExtern || routine.isUserlib ? ArrayForm::Pointer : ArrayForm::Owned;
    call.isCall = true;
    call.routine = &routine;
    call.effects = true;
    NeedElement(routine.result);
    ++callCount;
    return call;
}
