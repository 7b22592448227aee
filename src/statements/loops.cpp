//     do                              while (condition)
//     {                               {
//     __kvSchedPoll();                __kvSchedPoll();
//         ...                             ...
//     } while (!(condition));         }
#include "statements/loops.h"

#include <algorithm>

#include "driver/report.h"
#include "statements/for_loops.h"
#include "statements/words.h"
#include "symbols/scopes.h"

namespace {

void PopLoopStacks(State& state) {
    --state.loopDepth;
    if (!state.loopStack.empty()) state.loopStack.pop_back();
    if (!state.loopKindStack.empty()) state.loopKindStack.pop_back();
}

OpenBlock CloseRepeat(State& state, const std::string& closer) {
    OpenBlock closed = CloseBlock(state, BlockKind::Repeat, closer);
    --state.loopDepth;
    if (!state.repeatStack.empty()) state.repeatStack.pop_back();
    return closed;
}

// The first name of a condition that is a Local of the block about to be closed; null when there is none.
const std::string* LocalOfBlock(TokenSpan condition) {
    if (localDefList.empty() || localDefList.back().leaves.empty()) return nullptr;
    const std::vector<Variable*>& locals = localDefList.back().leaves.back().variables;
    if (locals.empty()) return nullptr;
    for (const std::string& token : condition)
        if (std::find(locals.begin(), locals.end(), FindLocal(token)) != locals.end()) return &token;
    return nullptr;
}

}  // namespace

void TranslateRepeat(State& state, TokenSpan tokens) {
    RefuseMore(tokens, 1);
    PushBlock();
    ++state.loopDepth;
    state.repeatStack.push_back(state.currentLine);
    OpenNewBlock(state, BlockKind::Repeat);
    EmitLine(state, "do");
    EmitLine(state, "{");
    EmitLine(state, "__kvSchedPoll();");
}

// A C++ condition behind the body cannot see the body's variables, so a test of one moves inside it.
void TranslateUntil(State& state, TokenSpan tokens) {
    OpenBlock closed = CloseRepeat(state, "Until");
    std::string condition = ConditionText(tokens.From(1), "Until");
    if (const std::string* local = LocalOfBlock(tokens.From(1))) {
        if (closed.continued)
            ReportFatal("'Until' tests '" + *local +
                        "', which the loop's 'Continue' may jump over; declare '" + *local +
                        "' before 'Repeat'");
        EmitLine(state, "if (" + condition + ") break;");
        EmitLine(state, "} while (true);");
    } else {
        EmitLine(state, "} while (!(" + condition + "));");
    }
    PopBlock();
}

void TranslateForever(State& state, TokenSpan tokens) {
    RefuseMore(tokens, 1);
    CloseRepeat(state, "Forever");
    PopBlock();
    EmitLine(state, "}");
    EmitLine(state, "while (true);");
}

void TranslateWhile(State& state, TokenSpan tokens) {
    PushBlock();
    ++state.loopDepth;
    state.loopStack.push_back(state.currentLine);
    state.loopKindStack.push_back("While");
    EmitLine(state, "while (" + ConditionText(tokens.From(1), "While") + ")");
    OpenNewBlock(state, BlockKind::Loop);
    EmitLine(state, "{");
    EmitLine(state, "__kvSchedPoll();");
}

void TranslateWend(State& state, TokenSpan tokens) {
    RefuseMore(tokens, 1);
    const OpenBlock closed = CloseBlock(state, BlockKind::Loop, "Wend");
    RewriteWalk(state, closed.walk);
    PopLoopStacks(state);
    PopBlock();
    EmitLine(state, "}" + closed.walk.behind);
}

void TranslateNext(State& state, TokenSpan tokens) {
    OpenBlock closed = CloseBlock(state, BlockKind::Loop, tokens[0]);
    if (tokens.size() > 1) {
        if (closed.variable.empty() || tokens[1] != closed.variable) RefuseMore(tokens, 1);
        RefuseMore(tokens, 2);
    }
    PopLoopStacks(state);
    PopBlock();
    RewriteWalk(state, closed.walk);
    EmitLine(state, "__kvSchedPoll();");
    EmitLine(state, "}" + closed.walk.behind);
}
