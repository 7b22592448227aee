#include "statements/parts.h"

#include <algorithm>
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

// ---- reading

void Swap(State& state, PlaceInFile& place) {
    std::swap(state.traceText, place.traceText);
    std::swap(state.lineComment, place.lineComment);
    std::swap(state.commentText, place.commentText);
    std::swap(state.closerMessage, place.closerMessage);
    std::swap(state.lineIndent, place.lineIndent);
    std::swap(state.currentLine, place.currentLine);
    std::swap(state.closerLine, place.closerLine);
    std::swap(state.currentStatement, place.currentStatement);
    std::swap(state.firstBlock, place.firstBlock);
    std::swap(state.inOneLineIf, place.inOneLineIf);
    std::swap(state.ifsLeftOpen, place.ifsLeftOpen);
    std::swap(state.passing, place.passing);
}

// The stacks that the end of a file looks at, as far as they were filled by the file.
struct Stacks {
    explicit Stacks(const State& state)
        : repeats(state.repeatStack.size()),
          ifs(state.ifStack.size()),
          loops(state.loopStack.size()),
          withs(state.withLines.size()),
          selects(state.selectDepth) {}
    std::size_t repeats, ifs, loops, withs;
    int selects;
};

template <typename Item>
std::vector<Item> Behind(const std::vector<Item>& stack, std::size_t size) {
    const std::size_t from = std::min(size, stack.size());
    return {stack.begin() + static_cast<std::ptrdiff_t>(from), stack.end()};
}

void CheckPartClosed(const State& state, const Stacks& before) {
    State own;
    own.repeatStack = Behind(state.repeatStack, before.repeats);
    own.ifStack = Behind(state.ifStack, before.ifs);
    own.loopStack = Behind(state.loopStack, before.loops);
    own.loopKindStack = Behind(state.loopKindStack, before.loops);
    own.withLines = Behind(state.withLines, before.withs);
    own.selectDepth = state.selectDepth - before.selects;
    own.selectLine = state.selectLine;
    own.closerMessage = state.closerMessage;
    own.closerLine = state.closerLine;
    CheckBlocksClosed(own);
}

// ---- settling

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
    while (next < state.parts.size()) {
        const std::string beginMark = BeginMark(next), endMark = EndMark(next);
        const std::size_t begin = text.find(beginMark, from);
        if (begin >= to) break;
        const RoutinePart& part = state.parts[next++];
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
    part.pathAt = static_cast<std::size_t>(state.lineIndent) + head.size();
    part.pathSize = path.size();
    text.resize(lineAt);
    number = state.parts.size();
    text += BeginMark(number);
    state.parts.push_back(std::move(part));
    state.openParts.push_back(&out);
    place.firstBlock = state.blocks.size();
    Swap(state, place);
}

OpenPart::~OpenPart() {
    Swap(state, place);
    OpenText(state) += EndMark(number);
    state.openParts.pop_back();
}

void OpenPart::Read(const std::string& source) {
    const Stacks before(state);
    ReadStatements(state, source);
    if (!state.mistaken) CheckPartClosed(state, before);
}

void SettleParts(State& state) {
    if (state.parts.empty()) return;
    std::size_t next = 0;
    SettledText settled = Settle(state, next, 0, OpenText(state).size(), *state.out);
    Piece& piece = state.out->pieces.back();
    piece.text = std::move(settled.text);
    piece.partPaths = std::move(settled.paths);
    state.parts.clear();
}
