#include "statements/parts.h"

#include <utility>

#include "base/paths.h"
#include "base/report.h"
#include "base/run.h"
#include "expressions/expression.h"
#include "statements/end_of_file.h"
#include "statements/line_writer.h"
#include "statements/program.h"
#include "statements/second_pass.h"
#include "symbols/program_files.h"

namespace {

int partCount = 0;  // of the run
const PartOfRun partOfRun(partCount);

std::string PathOfCpp(const FileOutput& part) { return StripExtension(part.header) + ".cpp"; }

struct SettledText {
    std::string text;
    std::vector<PartPath> paths;
};

void Append(SettledText& to, const SettledText& what) {
    for (const PartPath& path : what.paths)
        to.paths.push_back({to.text.size() + path.at, path.size, path.path});
    to.text += what.text;
}

SettledText IncludeLine(const RoutinePart& part) {
    return {part.line, {{part.pathAt, part.pathSize, PathOfCpp(*part.out)}}};
}

// Whether the text is the part's, which it becomes when there is none so far.
bool IsTextOf(FileOutput& part, const std::string& text) {
    std::string& own = part.pieces.back().text;
    if (part.isSettled) return own == text;
    own = text;
    part.isSettled = true;
    NoteFinished(part);
    return true;
}

// Appends what stands between the two, where no part does.
void AppendUpTo(std::string& settled, const State& state, RoutineEnd& from, const RoutineEnd& to) {
    const std::string& text = state.out->pieces.back().text;
    for (; from.slots < to.slots; ++from.slots) {
        const Slot& slot = state.routine.slots[from.slots];
        settled.append(text, from.text, slot.at - from.text);
        settled += slot.text;
        from.text = slot.at;
    }
    settled.append(text, from.text, to.text - from.text);
    from = to;
}

// What stands between the two, as `holder` has it.
SettledText Settle(const State& state, RoutineEnd from, const RoutineEnd& to, const FileOutput& holder) {
    SettledText settled;
    while (from.parts < to.parts) {
        const RoutinePart& part = state.routine.parts[from.parts];
        AppendUpTo(settled.text, state, from, part.begin);
        SettledText body = Settle(state, part.begin, part.end, *part.out);
        if (IsTextOf(*part.out, body.text)) body = IncludeLine(part);
        RewritePartPaths(holder, body.text, body.paths);
        Append(settled, body);
        from = part.end;
    }
    AppendUpTo(settled.text, state, from, to);
    return settled;
}

RoutineEnd EndOf(const State& state) {
    return {state.out->pieces.back().text.size(), state.routine.slots.size(), state.routine.parts.size()};
}

}  // namespace

OpenPart::OpenPart(State& routine, FileOutput& out) : state(routine) {
    if (++partCount > mostParts)
        ReportFatal("The program has more than " + std::to_string(mostParts) +
                    " Includes inside Functions and Methods. Put what they include into a Function");
    MarkLine(state);
    std::string& text = state.out->pieces.back().text;
    const std::size_t lineAt = text.size();
    const std::string head = "#include \"", path = PathOfCpp(out);
    EmitLine(state, head + path + "\"");
    RoutinePart part;
    part.out = &out;
    part.line = text.substr(lineAt);
    part.pathAt = static_cast<std::size_t>(state.place.indent) + head.size();
    part.pathSize = path.size();
    text.resize(lineAt);
    number = state.routine.parts.size();
    state.routine.parts.push_back(std::move(part));
    state.routine.parts.back().begin = EndOf(state);
    state.routine.openParts.push_back(&out);
    place.firstBlock = state.blocks.size();
    place.firstWith = state.withs.size();
    std::swap(state.place, place);
    state.marked = {};
}

OpenPart::~OpenPart() {
    std::swap(state.place, place);
    state.routine.parts[number].end = EndOf(state);
    state.routine.openParts.pop_back();
    state.marked = {};
}

void OpenPart::Read(const std::string& source) {
    ReadStatements(state, source);
    if (!state.blocksAreDoubtful) CheckPartClosed(state);
}

void SettleText(State& state) {
    if (state.routine.parts.empty() && state.routine.slots.empty()) return;
    SettledText settled = Settle(state, {}, EndOf(state), *state.out);
    Piece& piece = state.out->pieces.back();
    piece.text = std::move(settled.text);
    if (!settled.paths.empty()) piece.rest.Make().partPaths = std::move(settled.paths);
}
