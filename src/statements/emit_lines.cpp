#include "statements/emit_lines.h"

#include <algorithm>

#include "expressions/sequence_walks.h"
#include "statements/state.h"

void EmitLines(State& state, std::string_view lines) {
    const bool asTheyStand =
        state.place.indent == 0 && state.place.traceText.empty() && state.place.commentText.empty();
    if (asTheyStand && SequenceWalkCount() == 0 && !lines.empty() && lines.back() == '\n') {
        state.routine.bareLabel = false;
        state.out->pieces.back().text += lines;
        return;
    }
    std::size_t start = 0;
    while (start < lines.size()) {
        const std::size_t end = std::min(lines.find('\n', start), lines.size());
        EmitLine(state, lines.substr(start, end - start));
        start = end + 1;
    }
}
