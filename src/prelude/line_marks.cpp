#include "prelude/line_marks.h"

#include <algorithm>

#include "base/run.h"
#include "base/settings.h"
#include "base/utf8.h"
#include "linking/runtime_code.h"

std::string ShownPath(const std::string& source) {
    const auto below = [&source](const std::string& folder) {
        return !folder.empty() && source.compare(0, folder.size() + 1, folder + "/") == 0;
    };
    if (below(settings.sourceFolder)) return source.substr(settings.sourceFolder.size() + 1);
    if (below(settings.installation)) return "<korvel>" + source.substr(settings.installation.size());
    const std::string way = GenericTextOf(PathOf(source).lexically_relative(PathOf(settings.sourceFolder)));
    return way.empty() ? source : way;
}

namespace {

// The source that was marked last, in a C++ literal that is still open: most marks are of the same as the one before.
struct MarkedSource {
    std::string path, opened;
};
MarkedSource markedSource;
const PartOfRun partOfRun(markedSource);

const std::string& OpenedLiteral(const std::string& source) {
    if (markedSource.path != source || markedSource.opened.empty()) {
        markedSource = {source, CppLiteral(ShownPath(source))};
        markedSource.opened.pop_back();
    }
    return markedSource.opened;
}

std::string Mark(int line, const std::string& source, int anchor) {
    const std::string& opened = OpenedLiteral(source);
    std::string mark;
    mark.reserve(opened.size() + 40);
    ((mark += "#line ") += std::to_string(line)) += ' ';
    mark += opened;
    if (anchor != 0) (mark += '@') += std::to_string(anchor);
    return mark += "\"\n";
}

// Modules of the installation are not edited.
bool IsAnchored(const FileOutput& out) { return settings.units && !out.isModule; }

int NewAnchor(FileOutput& out, int line) {
    out.anchors.push_back(line);
    return static_cast<int>(out.anchors.size());
}

bool IsPlaceKnown() { return settings.lineMarks && settings.currentLine > 0; }

}  // namespace

std::string LineMark(FileOutput& out, Piece& piece, int line, bool named) {
    int shown = line;
    if (IsAnchored(out)) {
        if (piece.anchor == 0) {
            piece.anchor = NewAnchor(out, line);
            piece.anchorLine = line;
        }
        shown = std::max(1, line - piece.anchorLine + 1);
    }
    if (!named) return "#line " + std::to_string(shown) + "\n";
    return Mark(shown, piece.anchor == 0 ? settings.currentFile : out.source, piece.anchor);
}

std::string MarkOfPlace(FileOutput& out) {
    if (!IsPlaceKnown()) return {};
    if (IsAnchored(out)) return Mark(1, out.source, NewAnchor(out, settings.currentLine));
    return Mark(settings.currentLine, settings.currentFile, 0);
}

std::string MarkOfPiece(FileOutput& out) {
    return IsPlaceKnown() ? LineMark(out, out.pieces.back(), settings.currentLine, true) : std::string();
}

std::string AnchorLines(const FileOutput& out) {
    const std::string name = ShownPath(out.source) + "@";
    std::string lines;
    int number = 0;
    for (const int line : out.anchors)
        ((lines += name) += std::to_string(++number)) += " " + std::to_string(line) + "\n";
    return lines;
}

std::string OwnCodeMark() { return "#line 1 \"<korvel>\"\n"; }
