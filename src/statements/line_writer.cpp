#include "statements/line_writer.h"

#include "driver/settings.h"
#include "lexer/lexer.h"

void EmitLine(State& state, std::string_view text) {
    std::string& piece = state.out->pieces.back().text;
    if (state.lineIndent > 0) piece.append(static_cast<std::size_t>(state.lineIndent), '\t');
    piece += text;
    if (!state.traceText.empty()) {
        piece += " " + GuardComment("// " + state.traceText);
        state.traceText.clear();
    }
    if (!state.commentText.empty()) {
        piece += " " + state.commentText;
        state.commentText.clear();
    }
    piece += '\n';
}

void AddComment(State& state, const std::string& comment) {
    if (comment.empty()) return;
    if (!state.commentText.empty()) state.commentText += " ";
    state.commentText += comment;
}

void FlushComment(State& state) {
    if (!state.commentText.empty()) {
        PutLine(*state.out,
                std::string(static_cast<std::size_t>(state.lineIndent), '\t') + state.commentText);
        state.commentText.clear();
    }
    state.traceText.clear();
}
