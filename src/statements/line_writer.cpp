#include "statements/line_writer.h"

#include <utility>

#include "lexer/lexer.h"

std::size_t EmitLine(State& state, std::string_view text) {
    std::string& piece = state.out->pieces.back().text;
    if (state.place.indent > 0) piece.append(static_cast<std::size_t>(state.place.indent), '\t');
    const std::size_t at = piece.size();
    piece += text;
    if (!state.place.traceText.empty()) {
        piece += " " + GuardComment("// " + state.place.traceText);
        state.place.traceText.clear();
    }
    if (!state.place.commentText.empty()) {
        if (piece.back() != ' ') piece += ' ';  // a trace ends in one
        piece += state.place.commentText;
        state.place.commentText.clear();
    }
    piece += '\n';
    return at;
}

void PlaceComment(State& state) {
    if (!state.place.lineComment.empty())
        state.place.commentText = std::exchange(state.place.lineComment, {});
}

void FlushComment(State& state) {
    PlaceComment(state);
    if (!state.place.commentText.empty()) {
        PutLine(*state.out,
                std::string(static_cast<std::size_t>(state.place.indent), '\t') + state.place.commentText);
        state.place.commentText.clear();
    }
    state.place.traceText.clear();
}
