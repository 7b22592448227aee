#include "prelude/output.h"

#include <algorithm>

#include "base/run.h"
#include "base/settings.h"
#include "base/utf8.h"
#include "prelude/line_marks.h"

namespace {

// The needs of the piece that is open in the file being translated, or of a global's initialiser.
std::vector<const ClassInfo*>* needsSink = nullptr;
FileOutput* openOutput = nullptr;
std::size_t globalCount = 0;
const PartOfRun partOfRun(needsSink, openOutput, globalCount);

}  // namespace

std::string HeaderPath(const FileOutput& out) { return out.folder + "/" + out.base + ".h"; }

std::string CppPath(const FileOutput& out) { return out.folder + "/" + out.base + ".cpp"; }

// Names of Includes start at the top folder; a .cpp in a sub-folder has to climb up to it first.
std::string PathSeenFrom(const FileOutput& out, const std::string& path) {
    if (out.folder == settings.outputPath) return path;
    return GenericTextOf(PathOf(settings.outputPath + "/" + path).lexically_relative(PathOf(out.folder)));
}

void RewritePartPaths(const FileOutput& out, std::string& text, std::vector<PartPath>& paths) {
    std::size_t grown = 0;
    for (PartPath& part : paths) {
        const std::string path = PathSeenFrom(out, part.path);
        part.at += grown;
        text.replace(part.at, part.size, path);
        grown += path.size() - part.size;
        part.size = path.size();
    }
}

void PutLine(FileOutput& out, std::string_view line) {
    std::string& text = out.pieces.back().text;
    text += line;
    text += '\n';
}

// What was begun for lines that did not come.
static bool HoldsNothing(const Piece& piece) {
    const bool isForLines = piece.kind == Piece::Kind::Lines || piece.kind == Piece::Kind::ClassLines;
    return isForLines && piece.text.empty() && piece.needs.empty();
}

// The text of the piece before is kept in a string of its size; the room that it grew in is the next one's.
Piece& BeginPiece(FileOutput& out, Piece::Kind kind, const ClassInfo* cls) {
    std::string room;
    if (!out.pieces.empty()) {
        room = out.pieces.back().text;
        room.swap(out.pieces.back().text);
        room.clear();
        if (HoldsNothing(out.pieces.back())) out.pieces.pop_back();
    }
    Piece& piece = out.pieces.emplace_back();
    piece.text = std::move(room);
    piece.kind = kind;
    piece.cls = cls;
    return piece;
}

void PutGlobal(FileOutput& out, GlobalDefinition definition) {
    definition.mark = MarkOfPlace(out);
    PutMarkedGlobal(out, std::move(definition));
}

void PutMarkedGlobal(FileOutput& out, GlobalDefinition definition) {
    definition.number = ++globalCount;
    out.globals.push_back(std::move(definition));
}

void NeedClass(const ClassInfo* cls) {
    std::vector<const ClassInfo*>* sink = needsSink;
    if (sink == nullptr && openOutput != nullptr && !openOutput->pieces.empty())
        sink = &openOutput->pieces.back().needs;
    if (cls == nullptr || sink == nullptr) return;
    if (std::find(sink->begin(), sink->end(), cls) == sink->end()) sink->push_back(cls);
}

std::vector<const ClassInfo*>* CollectNeedsInto(std::vector<const ClassInfo*>* list) {
    std::vector<const ClassInfo*>* before = needsSink;
    needsSink = list;
    return before;
}

FileOutput* OpenOutput() { return openOutput; }

void LeanOnOthers() {
    if (openOutput != nullptr) openOutput->leansOnOthers = true;
}

FileOutput* SetOpenOutput(FileOutput* out) {
    FileOutput* before = openOutput;
    openOutput = out;
    return before;
}
