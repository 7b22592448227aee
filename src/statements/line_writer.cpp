#include "statements/line_writer.h"

#include <algorithm>
#include <utility>

#include "base/run.h"
#include "base/settings.h"
#include "lexer/lexer.h"
#include "prelude/line_marks.h"

namespace {

Code line;  // see FreshLine
const PartOfRun partOfRun(line);

// Passages in the text become slots.
void PutCode(State& state, std::string& piece, const Code& code) {
    for (const Passage& passage : code.passages)
        state.routine.slots.push_back({piece.size() + passage.at, passage.text, passage.walk});
    piece += code.text;
}

bool HoldsOwnCode(const Piece& piece) {
    return piece.kind == Piece::Kind::Opening || piece.kind == Piece::Kind::ClassClose;
}

// Marks the line unless that is where the C++ compiler counts itself to. A slot may be filled with any lines.
void MarkLine(State& state, int number) {
    Piece& piece = state.out->pieces.back();
    MarkedPlace& marked = state.marked;
    const bool follows = marked.piece == &piece && marked.size == piece.text.size() &&
                         marked.slots == state.routine.slots.size();
    const bool own = HoldsOwnCode(piece);
    if (own && !follows && piece.text.empty()) piece.text += OwnCodeMark();
    if (!own && number > 0 && (!follows || marked.line != number))
        piece.text += LineMark(*state.out, piece, number, !follows);
    marked = {&piece, piece.text.size(), state.routine.slots.size(), number};
}

// Takes note of the lines that the piece has got since MarkLine.
void NoteMarked(State& state) {
    const std::string& text = state.out->pieces.back().text;
    MarkedPlace& marked = state.marked;
    for (std::size_t end = text.find('\n', marked.size); end != std::string::npos;
         end = text.find('\n', end + 1))
        ++marked.line;
    marked.size = text.size();
}

void BeginLine(State& state, std::string& piece, std::string_view text) {
    if (text != "{") MarkLine(state);  // a brace does nothing
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
    if (settings.lineMarks) NoteMarked(state);
}

}  // namespace

void MarkLine(State& state) {
    if (settings.lineMarks) MarkLine(state, state.place.line);
}

void EmitInlineCpp(State& state, const InlineLine& inlined) {
    // A mark would become part of what an unfinished line begins.
    if (settings.lineMarks && !state.marked.unfinished) MarkLine(state, inlined.line);
    PutLine(*state.out, settings.traceMode && !inlined.goesOn ? inlined.text + " //INLINE" : inlined.text);
    if (!settings.lineMarks) return;
    NoteMarked(state);
    state.marked.unfinished = inlined.goesOn;
}

void EmitLine(State& state, std::string_view text) {
    std::string& piece = state.out->pieces.back().text;
    BeginLine(state, piece, text);
    piece += text;
    EndLine(state, piece);
}

void EmitLine(State& state, const Code& code) {
    std::string& piece = state.out->pieces.back().text;
    BeginLine(state, piece, code.text);
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
    BeginLine(state, piece, {});
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
