//     if (condition)
//     {
//         ...
//     }
//     else if (condition)
//     {
//         ...
//     }
#include "statements/handlers.h"

#include <algorithm>
#include <utility>

#include "base/report.h"
#include "base/settings.h"
#include "statements/line_writer.h"
#include "statements/second_pass.h"
#include "statements/words.h"
#include "symbols/scopes.h"

namespace {

// "if (...)" or "else if (...)" from a condition that ends before `end`, and the branch's scope.
void OpenBranch(State& state, const std::string& cppWords, TokenSpan condition, const std::string& keyword) {
    Code& line = FreshLine();
    line += cppWords;
    line += " (";
    WriteCondition(line, condition, keyword);
    line += ')';
    EmitLine(state, line);
    EmitLine(state, "{");
    PushBlock();
}

void OpenElse(State& state) {
    EmitLine(state, "else");
    EmitLine(state, "{");
    PushBlock();
}

void CloseBranch(State& state) {
    PopBlock();
    EmitLine(state, "}");
}

void RefuseElseIfAsTwoWords(TokenSpan tokens, std::size_t afterElse) {
    if (tokens.KeywordAt(afterElse) == Keyword::If)
        ReportFatal("Syntax error: Use 'ElseIf' instead of 'Else If'",
                    tokens.Slice(afterElse - 1, afterElse + 1));
}

// The open If that an Else or ElseIf continues.
Braces& ContinuedIf(State& state, const std::string& keyword) {
    for (std::size_t i = state.blocks.size(); i-- > state.place.firstBlock;) {
        Braces& block = state.blocks[i].braces;
        if (block.kind != BlockKind::If) continue;
        if (i + 1 != state.blocks.size())
            ReportFatal("'" + keyword + "' belongs to the If of line " + std::to_string(block.line) +
                        ", but a block that starts at line " +
                        std::to_string(state.blocks.back().braces.line) + " is still open");
        if (block.elseSeen)
            ReportFatal("'" + keyword + "' after the 'Else' of the If that starts at line " +
                        std::to_string(block.line));
        return block;
    }
    ReportFatal("'" + keyword + "' without an open If block" + wayToOpenIf, {}, ClosedIf(state));
}

bool EndsStatement(const Word& token) {
    return token.sign == '|' || token.keyword == Keyword::Else || token.keyword == Keyword::ElseIf ||
           token.keyword == Keyword::EndIf;
}

std::size_t TranslateOneLineIf(State& state, TokenSpan tokens, std::size_t at,
                               std::size_t leftOpenBy = noToken);

bool EndsLine(TokenSpan rest) {
    return std::all_of(rest.begin(), rest.end(), [](const std::string& token) {
        return Is(token, "|") || FindKeyword(token) == Keyword::EndIf;
    });
}

// Translates tokens [at, end) of a line. The line's comment belongs to its last statement.
void DispatchInLine(State& state, TokenSpan tokens, std::size_t at, std::size_t end) {
    if (!state.place.lineComment.empty() && EndsLine(tokens.From(end))) PlaceComment(state);
    DispatchStatement(state, tokens.Slice(at, end));
}

// Translates one branch's statements from `at` on; stops at Else, ElseIf, EndIf or the end of the line.
std::size_t TranslateBranch(State& state, TokenSpan tokens, std::size_t at) {
    while (at < tokens.size()) {
        if (Is(tokens[at], "|")) {
            ++at;
        } else if (EndsStatement(tokens.At(at))) {
            return at;
        } else if (tokens.KeywordAt(at) == Keyword::If && tokens.Find(Keyword::Then, at) != noToken) {
            at = TranslateOneLineIf(state, tokens, at);
        } else {
            std::size_t end = at;
            while (end < tokens.size() && !EndsStatement(tokens.At(end))) ++end;
            DispatchInLine(state, tokens, at, end);
            at = end;
        }
    }
    return at;
}

// What a branch opens it has to close.
std::size_t TranslateWholeBranch(State& state, TokenSpan tokens, std::size_t at) {
    const std::size_t depth = state.blocks.size(), withs = state.withs.size();
    at = TranslateBranch(state, tokens, at);
    if (state.blocks.size() != depth || state.withs.size() != withs)
        ReportFatal("A block that opens or closes behind 'Then' must do both on the same line");
    return at;
}

// Opens the branch of the Else or ElseIf at `at`; returns the index of what stands in it.
std::size_t OpenNextBranch(State& state, TokenSpan tokens, std::size_t at) {
    CloseBranch(state);
    BeginBranch(state);
    if (tokens.KeywordAt(at) == Keyword::ElseIf) {
        const std::size_t then = tokens.Find(Keyword::Then, at);
        if (then == noToken) ReportFatal("Expected 'Then' after 'ElseIf'");
        OpenBranch(state, "else if", tokens.Slice(at + 1, then), "ElseIf");
        return then + 1;
    }
    RefuseElseIfAsTwoWords(tokens, at + 1);
    OpenElse(state);
    state.blocks.back().braces.elseSeen = true;
    return at + 1;
}

// Translates the branches of the If that has been opened; returns the index behind them and their EndIf.
std::size_t TranslateBranches(State& state, TokenSpan tokens, std::size_t at, bool inOneLineIf) {
    for (;;) {
        at = TranslateWholeBranch(state, tokens, at);
        if (at >= tokens.size()) return at;
        if (tokens.KeywordAt(at) == Keyword::EndIf) return at + 1;
        if (state.blocks.back().braces.elseSeen) {
            if (inOneLineIf) return at;  // the outer If's
            ReportFatal("'" + tokens[at] + "' after 'Else'");
        }
        at = OpenNextBranch(state, tokens, at);
    }
}

// Translates the If at `at` with all its branches and closes it, unless the EndIf at `leftOpenBy` is its own;
// returns the index behind it.
std::size_t TranslateOneLineIf(State& state, TokenSpan tokens, std::size_t at, std::size_t leftOpenBy) {
    const std::size_t then = tokens.Find(Keyword::Then, at);
    OpenBranch(state, "if", tokens.Slice(at + 1, then), "If");
    OpenNewBlock(state, BlockKind::If);
    const bool outer = std::exchange(state.place.inOneLineIf, true);
    at = TranslateBranches(state, tokens, then + 1, outer);
    state.place.inOneLineIf = outer;
    if (at == leftOpenBy + 1) return at;
    CloseBlock(state, BlockKind::If, "EndIf");
    CloseBranch(state);
    return at;
}

void OpenIf(State& state, TokenSpan condition) {
    PlaceComment(state);
    OpenBranch(state, "if", condition, "If");
    OpenNewBlock(state, BlockKind::If);
}

// The place of the EndIf on the line that leaves its If open.
std::size_t LeftOpenBy(State& state, TokenSpan tokens) {
    const std::size_t own = state.place.inOneLineIf ? noToken : OwnEndIf(tokens);
    if (own == noToken) return noToken;
    if (!state.place.ifsLeftOpen) state.place.ifsLeftOpen = FindIfsLeftOpen(settings.currentFile);
    return state.place.ifsLeftOpen->count({state.place.line, state.place.statement}) != 0 ? own : noToken;
}

// Statements behind an EndIf on the line.
void TranslateRest(State& state, TokenSpan tokens, std::size_t at, std::size_t leftOpenBy) {
    while (at < tokens.size()) {
        if (!Is(tokens[at], "|")) RefuseMore(tokens, at);
        const std::size_t start = ++at;
        const std::size_t then = tokens.Find(Keyword::Then, start);
        if (tokens.KeywordAt(start) == Keyword::If && then != noToken) {
            if (StaysOpen(tokens, then)) return OpenIf(state, tokens.Slice(start + 1, then));
            at = TranslateOneLineIf(state, tokens, start, leftOpenBy);
            continue;
        }
        while (at < tokens.size() && !Is(tokens[at], "|")) ++at;
        if (at > start) DispatchInLine(state, tokens, start, at);
    }
}

}  // namespace

// If condition [Then [statements [Else statements]]]
void TranslateIf(State& state, TokenSpan tokens) {
    std::size_t then = tokens.Find(Keyword::Then);
    if (StaysOpen(tokens, then))
        return OpenIf(state, tokens.Slice(1, then == noToken ? tokens.size() : then));
    const std::size_t leftOpenBy = LeftOpenBy(state, tokens);
    TranslateRest(state, tokens, TranslateOneLineIf(state, tokens, 0, leftOpenBy), leftOpenBy);
    if (leftOpenBy == noToken) state.place.closedIf = state.place.line;
}

// ElseIf condition [Then [statement]]
void TranslateElseIf(State& state, TokenSpan tokens) {
    ContinuedIf(state, "ElseIf");
    CloseBranch(state);
    BeginBranch(state);
    const std::size_t then = tokens.Find(Keyword::Then);
    const bool alone = then == noToken || then + 1 == tokens.size();
    if (alone) PlaceComment(state);
    OpenBranch(state, "else if", tokens.Slice(1, then == noToken ? tokens.size() : then), "ElseIf");
    if (alone) return;
    if (tokens.KeywordAt(then + 1) == Keyword::ElseIf) RefuseMore(tokens, then + 1);
    DispatchInLine(state, tokens, then + 1, tokens.size());
}

// Else [statement]
void TranslateElse(State& state, TokenSpan tokens) {
    RefuseElseIfAsTwoWords(tokens, 1);
    ContinuedIf(state, "Else").elseSeen = true;
    CloseBranch(state);
    BeginBranch(state);
    if (tokens.size() == 1) PlaceComment(state);
    OpenElse(state);
    if (tokens.size() > 1) DispatchInLine(state, tokens, 1, tokens.size());
}

// EndIf
void TranslateEndIf(State& state, TokenSpan tokens) {
    RefuseMore(tokens, 1);
    std::optional<Block> closed = CloseBlock(state, BlockKind::If, "EndIf");
    if (!closed) return;
    if (settings.verbose) {
        Say("DEBUG: EndIf - popping scope at line " + std::to_string(state.place.line));
        Say("  Before pop: " + std::to_string(BlockCount()) + " scopes");
    }
    PopScopeOf(closed->braces);
    if (settings.verbose) Say("  After pop: " + std::to_string(BlockCount()) + " scopes");
    EmitClosing(state, closed->braces);
}
