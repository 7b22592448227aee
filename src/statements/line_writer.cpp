#include "statements/line_writer.h"

#include <utility>

#include "expressions/sequence_walks.h"
#include "lexer/lexer.h"

namespace {

// Passages in the text become slots.
void PutPassages(State& state, std::string& piece, std::string_view text) {
    for (std::size_t at; (at = text.find(passageSign)) != std::string_view::npos;) {
        const Passage passage = PassageIn(text.substr(at));
        piece += text.substr(0, passage.walk == 0 ? at + passage.size : at);
        text.remove_prefix(at + passage.size);
        if (passage.walk != 0) state.routine.slots.push_back({piece.size(), passage.text, passage.walk});
    }
    piece += text;
}

void PutText(State& state, std::string& piece, std::string_view text) {
    if (SequenceWalkCount() > 0)
        PutPassages(state, piece, text);
    else
        piece += text;
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

void EmitLine(State& state, std::string_view text) { EmitLine(state, {text}); }

void EmitLine(State& state, std::initializer_list<std::string_view> parts) {
    std::string& piece = state.out->pieces.back().text;
    BeginLine(state, piece);
    for (const std::string_view part : parts) PutText(state, piece, part);
    EndLine(state, piece);
}

std::vector<std::size_t> EmitSlottedLine(State& state, const std::vector<std::string>& texts) {
    std::string& piece = state.out->pieces.back().text;
    std::vector<std::size_t> slots;
    BeginLine(state, piece);
    for (const std::string& text : texts) {
        if (&text != &texts.front()) slots.push_back(OpenSlot(state));
        PutText(state, piece, text);
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
