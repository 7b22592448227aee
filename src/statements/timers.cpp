#include "statements/handlers.h"

#include <unordered_set>

#include "base/report.h"
#include "base/run.h"
#include "expressions/defaults.h"
#include "lexer/lexer.h"
#include "prelude/program_uses.h"
#include "statements/words.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"

namespace {

// The arguments of a handler: the defaults of all its parameters.
Code DefaultArguments(const Routine& handler) {
    Code arguments;
    for (const Parameter& parameter : handler.parameters) {
        if (!parameter.hasDefault)
            ReportFatal("AutoCall handler '" + handler.name + "' must not need arguments, but parameter '" +
                            parameter.name + "' has no default",
                        Tokens{handler.name});
        if (!arguments.text.empty()) arguments += ", ";
        WriteAs(arguments, TranslateDefault(handler, parameter), parameter.type);
    }
    return arguments;
}

Code HandlerCall(const std::string& name) {
    const Routine* handler = FindFunction(name);
    if (handler == nullptr) handler = FindUserlibFunction(name);
    if (handler == nullptr)
        ReportUnknown("AutoCall handler '" + name + "' is not a Function", Tokens{name}, Sought::Function);
    if (handler->cppName == "main") ReportFatal("AutoCall cannot call Main");
    const bool hidden = !handler->isUserlib && IsHidden(name);
    return (hidden ? "::" : "") + handler->cppName + "(" + DefaultArguments(*handler) + ")";
}

std::optional<std::unordered_set<std::string>> functionNames;  // in lower case, once they have been asked for
const PartOfRun partOfRun(functionNames);

void ListFunctionNames() {
    functionNames.emplace();
    for (const auto& function : symbols.functions) functionNames->insert(Lower(function.first->text));
    for (const auto& function : symbols.userlibRoutines) functionNames->insert(Lower(function.first->text));
}

// Whether some Function has the name in any letter case. Any other name stops nothing, which the language
// allows, but one that no Function has is a slip.
bool NamesFunction(const std::string& name) {
    if (!functionNames) ListFunctionNames();
    return functionNames->count(Lower(name)) != 0;
}

}  // namespace

// AutoCall Function Every | Once milliseconds
//     __kvAutoCall("Tick", [](){ KVL_Tick(); }, (long long)(interval), true);
void TranslateAutoCall(State& state, TokenSpan tokens) {
    const Hint form{"Write AutoCall Tick Every 1000, with the name of the Function alone"};
    if (tokens.size() < 4)
        ReportFatal("AutoCall syntax: AutoCall <function> Every|Once <milliseconds>" + form);
    const bool every = IsWord(tokens[2], "every");
    if (!every && !IsWord(tokens[2], "once"))
        ReportFatal(
            "AutoCall expects 'Every' or 'Once' after the function name, got '" + tokens[2] + "'" + form,
            tokens.Slice(2, 3));
    const std::string& name = tokens[1];
    const Expr& interval = TranslateValue(tokens.From(3), ExprMode::Condition);
    if (interval.kind == ExprKind::Nothing)
        ReportFatal("AutoCall needs an interval in milliseconds, e.g. AutoCall " + name + " Every 1000");
    if (interval.type.IsKnown() && !interval.type.IsNumber())
        ReportFatal("The interval of AutoCall must be a number, got " + KorvelName(interval.type),
                    tokens.From(3));
    NoteUse(&ProgramUses::timers);
    EmitLine(state, "__kvAutoCall(\"" + name + "\", [](){ " + HandlerCall(name) + "; }, (long long)(" +
                        TextOf(interval) + "), " + (every ? "true" : "false") + ");");
}

// StopCall Function | All
//     __kvStopCall("Tick");
void TranslateStopCall(State& state, TokenSpan tokens) {
    if (!IsName(tokens[1])) ReportFatal("StopCall syntax: StopCall <function>  (or  StopCall All)");
    RefuseMore(tokens, 2);
    const bool all = IsWord(tokens[1], "all");
    if (!all && !NamesFunction(tokens[1]))
        Warn("stop-call", "StopCall: there is no Function '" + tokens[1] + "'",
             {tokens.first + 1, {tokens.first[1]}});
    EmitLine(state, "__kvStopCall(\"" + (all ? std::string() : tokens[1]) + "\");");
}
