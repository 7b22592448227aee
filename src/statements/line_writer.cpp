#include "statements/line_writer.h"

#include <utility>

#include "base/run.h"
#include "lexer/lexer.h"

namespace {

Code line;  // see FreshLine
const PartOfRun partOfRun(line);

// Passages in the text become slots.
void PutCode(State& state, std::string& piece, const Code& code) {
    for (const Passage& passage : code.passages)
        state.routine.slots.push_back({piece.size() + passage.at, passage.text, passage.walk});
    piece += code.text;
}

void BeginLine(State& state, std::string& piece) {
    state.routine.bareLabel = false;
    if (state.place.indent > 0) piece.append(static_cast<std::size_t>(state.place.indent), '\t');
}

void EndLine(State& state, std::string& piece) {
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
}

}  // namespace

void EmitLine(State& state, std::string_view text) {
    std::string& piece = state.out->pieces.back().text;
    BeginLine(state, piece);
    piece += text;
    EndLine(state, piece);
}

void EmitLine(State& state, const Code& code) {
    std::string& piece = state.out->pieces.back().text;
    BeginLine(state, piece);
    PutCode(state, piece, code);
    EndLine(state, piece);
}

Code& FreshLine() {
    line.text.clear();
    line.passages.clear();
    return line;
}

std::vector<std::size_t> EmitSlottedLine(State& state, const std::vector<Code>& texts) {
    std::string& piece = state.out->pieces.back().text;
    std::vector<std::size_t> slots;
    BeginLine(state, piece);
    for (const Code& text : texts) {
        if (&text != &texts.front()) slots.push_back(OpenSlot(state));
        PutCode(state, piece, text);
    }
    EndLine(state, piece);
    return slots;
}

std::size_t OpenSlot(State& state) {
    state.routine.slots.push_back({state.out->pieces.back().text.size(), {}, 0});
    return state.routine.slots.size() - 1;
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
