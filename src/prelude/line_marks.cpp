#include "prelude/line_marks.h"

#include <algorithm>

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

std::string Mark(int line, const std::string& file) {
    return "#line " + std::to_string(line) + " " + CppLiteral(file) + "\n";
}

// Modules of the installation are not edited.
bool IsAnchored(const FileOutput& out) { return settings.units && !out.isModule; }

std::string AnchorName(const FileOutput& out, int number) {
    return ShownPath(out.source) + "@" + std::to_string(number);
}

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
    return Mark(shown, piece.anchor == 0 ? ShownPath(settings.currentFile) : AnchorName(out, piece.anchor));
}

std::string MarkOfPlace(FileOutput& out) {
    if (!IsPlaceKnown()) return {};
    if (IsAnchored(out)) return Mark(1, AnchorName(out, NewAnchor(out, settings.currentLine)));
    return Mark(settings.currentLine, ShownPath(settings.currentFile));
}

std::string MarkOfPiece(FileOutput& out) {
    return IsPlaceKnown() ? LineMark(out, out.pieces.back(), settings.currentLine, true) : std::string();
}

std::string AnchorLines(const FileOutput& out) {
    std::string lines;
    int number = 0;
    for (const int line : out.anchors) lines += AnchorName(out, ++number) + " " + std::to_string(line) + "\n";
    return lines;
}

std::string OwnCodeMark() { return "#line 1 \"<korvel>\"\n"; }
