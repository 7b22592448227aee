#include "statements/emit_lines.h"

#include <algorithm>

#include "base/settings.h"
#include "statements/state.h"

namespace {

// The characters [from, to), with the passages in them.
Code Part(const Code& code, std::size_t from, std::size_t to) {
    Code part = code.text.substr(from, to - from);
    for (const Passage& passage : code.passages)
        if (passage.at >= from && passage.at <= to)
            part.passages.push_back({passage.at - from, passage.text, passage.walk});
    return part;
}

}  // namespace

void EmitLines(State& state, const Code& lines) {
    const std::string& text = lines.text;
    const bool asTheyStand = !settings.lineMarks && state.place.indent == 0 &&
                             state.place.traceText.empty() && state.place.commentText.empty();
    if (asTheyStand && lines.passages.empty() && !text.empty() && text.back() == '\n') {
        state.routine.bareLabel = false;
        state.out->pieces.back().text += text;
        return;
    }
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        EmitLine(state, Part(lines, start, end));
        start = end + 1;
    }
}
