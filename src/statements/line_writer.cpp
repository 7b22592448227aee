#include "statements/line_writer.h"

#include "driver/settings.h"
#include "lexer/lexer.h"

void EmitLine(State& state, const std::string& text) {
    std::string line(static_cast<std::size_t>(state.lineIndent), '\t');
    line += text;
    if (!state.traceText.empty()) {
        line += " " + GuardComment("// " + state.traceText);
        state.traceText.clear();
    }
    if (!state.commentText.empty()) {
        line += " " + state.commentText;
        state.commentText.clear();
    }
    PutLine(*state.out, line);
}

void AddComment(State& state, const std::string& comment) {
    if (comment.empty()) return;
    if (!state.commentText.empty()) state.commentText += " ";
    state.commentText += comment;
}

void FlushComment(State& state) {
    if (!state.commentText.empty()) {
        PutLine(*state.out, std::string(static_cast<std::size_t>(state.lineIndent), '\t') + state.commentText);
        state.commentText.clear();
    }
    state.traceText.clear();
}
