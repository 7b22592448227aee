//     do                              while (condition)
//     {                               {
//     __kvSchedPoll();                __kvSchedPoll();
//         ...                             ...
//     } while (!(condition));         }
#include "statements/handlers.h"

#include <algorithm>

#include "base/report.h"
#include "expressions/constants.h"
#include "lexer/mentions.h"
#include "statements/for_loops.h"
#include "statements/words.h"
#include "symbols/scopes.h"

namespace {

// The first name of a condition that is a Local of the block about to be closed; null when there is none.
const std::string* LocalOfBlock(TokenSpan condition) {
    if (localDefList.empty() || localDefList.back().leaves.empty()) return nullptr;
    const ScopeBlock& block = localDefList.back().leaves.back();
    if (block.variables.empty()) return nullptr;
    for (const Token token : MentionedTokens(condition)) {
        const auto isIt = [local = FindLocal(token)](const ScopeBlock::Declaration& declared) {
            return declared.variable == local;
        };
        if (std::any_of(block.variables.begin(), block.variables.end(), isIt)) return &token->text;
    }
    return nullptr;
}

}  // namespace

// Repeat
void TranslateRepeat(State& state, TokenSpan tokens) {
    RefuseMore(tokens, 1);
    PushBlock();
    OpenNewBlock(state, BlockKind::Repeat);
    EmitLine(state, "do");
    EmitLine(state, "{");
    EmitLine(state, "__kvSchedPoll();");
}

// Until condition
// A C++ condition behind the body cannot see the body's variables, so a test of one moves inside it.
void TranslateUntil(State& state, TokenSpan tokens) {
    const std::optional<Block> closed = CloseBlock(state, BlockKind::Repeat, "Until");
    if (!closed) return;
    const Code condition = ConditionText(tokens.From(1), "Until");
    if (const std::string* local = LocalOfBlock(tokens.From(1))) {
        if (closed->braces.continued)
            ReportFatal("'Until' tests '" + *local +
                        "', which the loop's 'Continue' may jump over; declare '" + *local +
                        "' before 'Repeat'");
        EmitLine(state, "if (" + condition + ") break;");
        EmitLine(state, "} while (true);");
    } else {
        EmitLine(state, "} while (!(" + condition + "));");
    }
    PopScopeOf(closed->braces);
}

// Forever
void TranslateForever(State& state, TokenSpan tokens) {
    RefuseMore(tokens, 1);
    const std::optional<Block> closed = CloseBlock(state, BlockKind::Repeat, "Forever");
    if (!closed) return;
    state.routine.reachable = closed->braces.broken;
    PopScopeOf(closed->braces);
    EmitLine(state, "}");
    EmitLine(state, "while (true);");
}

// While condition
void TranslateWhile(State& state, TokenSpan tokens) {
    PushBlock();
    Code& line = FreshLine();
    line += "while (";
    const Expr& condition = WriteCondition(line, tokens.From(1), "While");
    line += ')';
    EmitLine(state, line);
    OpenNewBlock(state, BlockKind::Loop, "While").endless = IntegerOf(ConstantOf(condition)).value_or(0) != 0;
    EmitLine(state, "{");
    EmitLine(state, "__kvSchedPoll();");
}

// Wend
void TranslateWend(State& state, TokenSpan tokens) {
    RefuseMore(tokens, 1);
    std::optional<Block> closed = CloseBlock(state, BlockKind::Loop, "Wend");
    if (!closed) return;
    PopScopeOf(closed->braces);
    EmitClosing(state, closed->braces);
}

// Next [variable] | NextSeq
//     __kvSchedPoll();
//     }
void TranslateNext(State& state, TokenSpan tokens) {
    std::optional<Block> closed = CloseBlock(state, BlockKind::Loop, tokens[0]);
    if (!closed) return;
    if (tokens.size() > 1) {
        if (tokens[1] != closed->opener.variable) RefuseMore(tokens, 1);
        RefuseMore(tokens, 2);
    }
    PopScopeOf(closed->braces);
    EmitLine(state, "__kvSchedPoll();");
    EmitClosing(state, closed->braces);
}
