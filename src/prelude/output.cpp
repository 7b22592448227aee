#include "prelude/output.h"
#include "driver/run.h"

#include <algorithm>

namespace {

// The needs of the piece that is open in the file being translated, or of a global's initialiser.
std::vector<const ClassInfo*>* needsSink = nullptr;
FileOutput* openOutput = nullptr;
std::size_t globalCount = 0;
const PartOfRun partOfRun(needsSink, openOutput, globalCount);

}  // namespace

std::string HeaderPath(const FileOutput& out) { return out.folder + "/" + out.base + ".h"; }

std::string CppPath(const FileOutput& out) { return out.folder + "/" + out.base + ".cpp"; }

void PutLine(FileOutput& out, std::string_view line) {
    std::string& text = out.pieces.back().text;
    text += line;
    text += '\n';
}

Piece& BeginPiece(FileOutput& out, Piece::Kind kind, const ClassInfo* cls) {
    out.pieces.emplace_back();
    out.pieces.back().kind = kind;
    out.pieces.back().cls = cls;
    return out.pieces.back();
}

void PutGlobal(FileOutput& out, GlobalDefinition definition) {
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

FileOutput* SetOpenOutput(FileOutput* out) {
    FileOutput* before = openOutput;
    openOutput = out;
    return before;
}
