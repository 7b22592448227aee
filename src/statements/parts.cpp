#include "statements/parts.h"

#include <utility>

#include "driver/paths.h"
#include "driver/report.h"
#include "driver/run.h"
#include "expressions/expression.h"
#include "statements/end_of_file.h"
#include "statements/line_writer.h"
#include "statements/program.h"
#include "statements/second_pass.h"
#include "symbols/name_scan.h"

namespace {

int partCount = 0;  // of the run
const PartOfRun partOfRun(partCount);

std::string BeginMark(std::size_t part) { return "\x01\x04" + std::to_string(part) + '\x02'; }
std::string EndMark(std::size_t part) { return "\x01\x05" + std::to_string(part) + '\x02'; }

std::string& OpenText(State& state) { return state.out->pieces.back().text; }

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

// Text [from, to) as `holder` has it; `next` is the part that begins next.
SettledText Settle(State& state, std::size_t& next, std::size_t from, std::size_t to,
                   const FileOutput& holder) {
    const std::string& text = OpenText(state);
    SettledText settled;
    while (next < state.routine.parts.size()) {
        const std::string beginMark = BeginMark(next), endMark = EndMark(next);
        const std::size_t begin = text.find(beginMark, from);
        if (begin >= to) break;
        const RoutinePart& part = state.routine.parts[next++];
        const std::size_t end = text.find(endMark, begin);
        settled.text.append(text, from, begin - from);
        SettledText body = Settle(state, next, begin + beginMark.size(), end, *part.out);
        if (IsTextOf(*part.out, body.text)) body = IncludeLine(part);
        RewritePartPaths(holder, body.text, body.paths);
        Append(settled, body);
        from = end + endMark.size();
    }
    settled.text.append(text, from, to - from);
    return settled;
}

}  // namespace

OpenPart::OpenPart(State& routine, FileOutput& out) : state(routine) {
    if (++partCount > mostParts)
        ReportFatal("The program has more than " + std::to_string(mostParts) +
                    " Includes inside Functions and Methods. Put what they include into a Function");
    std::string& text = OpenText(state);
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
    text += BeginMark(number);
    state.routine.parts.push_back(std::move(part));
    state.routine.openParts.push_back(&out);
    place.firstBlock = state.blocks.size();
    place.firstWith = state.withs.size();
    std::swap(state.place, place);
}

OpenPart::~OpenPart() {
    std::swap(state.place, place);
    OpenText(state) += EndMark(number);
    state.routine.openParts.pop_back();
}

void OpenPart::Read(const std::string& source) {
    ReadStatements(state, source);
    if (!state.mistaken) CheckPartClosed(state);
}

void SettleParts(State& state) {
    if (state.routine.parts.empty()) return;
    std::size_t next = 0;
    SettledText settled = Settle(state, next, 0, OpenText(state).size(), *state.out);
    Piece& piece = state.out->pieces.back();
    piece.text = std::move(settled.text);
    piece.partPaths = std::move(settled.paths);
    state.routine.parts.clear();
}
