#include "statements/line_writer.h"

#include <utility>

#include "lexer/lexer.h"

std::size_t EmitLine(State& state, std::string_view text) {
    std::string& piece = state.out->pieces.back().text;
    if (state.lineIndent > 0) piece.append(static_cast<std::size_t>(state.lineIndent), '\t');
    const std::size_t at = piece.size();
    piece += text;
    if (!state.traceText.empty()) {
        piece += " " + GuardComment("// " + state.traceText);
        state.traceText.clear();
    }
    if (!state.commentText.empty()) {
        if (piece.back() != ' ') piece += ' ';  // a trace ends in one
        piece += state.commentText;
        state.commentText.clear();
    }
    piece += '\n';
    return at;
}

void PlaceComment(State& state) {
    if (!state.lineComment.empty()) state.commentText = std::exchange(state.lineComment, {});
}

void FlushComment(State& state) {
    PlaceComment(state);
    if (!state.commentText.empty()) {
        PutLine(*state.out,
                std::string(static_cast<std::size_t>(state.lineIndent), '\t') + state.commentText);
        state.commentText.clear();
    }
    state.traceText.clear();
}
