#include "kv/source_traces.h"

#include <cctype>
#include <fstream>

#include "base/utf8.h"

namespace {

std::string FirstWord(const std::string& line) {
    std::string word;
    for (const char c : line) {
        if (!std::isalnum(static_cast<unsigned char>(c))) break;
        word += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return word;
}

}  // namespace

std::string Trimmed(const std::string& text) {
    const char blanks[] = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

const TracePlace* SourceTraces::InlineLine(const std::string& text) const {
    const auto found = inlineLines_.find(Trimmed(text));
    return found != inlineLines_.end() ? &found->second : nullptr;
}

bool SourceTraces::IsInline(const TracePlace& place) const {
    const auto file = linesInline_.find(place.file);
    return file != linesInline_.end() && file->second.count(place.line) != 0;
}

TracePlace SourceTraces::LineWith(const std::string& text) const {
    for (const auto& line : linkingLines_) {
        if (line.first.find(text) != std::string::npos) return line.second;
    }
    return TracePlace();
}

void SourceTraces::Read(const std::string& source) {
    std::ifstream stream(PathOf(source), std::ios::binary);
    bool inInline = false;
    bool inExtern = false;
    TracePlace place;
    place.file = source;
    std::set<int>& linesInline = linesInline_[source];
    for (std::string line; std::getline(stream, line);) {
        ++place.line;
        line = Trimmed(line);
        const std::string word = FirstWord(line);
        if (word == "endinlinecpp") inInline = false;
        if (word == "endextern") inExtern = false;
        if (inInline && !line.empty()) inlineLines_.emplace(line, place);
        if (inInline) linesInline.insert(place.line);
        if (inExtern || word == "linker") linkingLines_.emplace_back(line, place);
        if (word == "inlinecpp") inInline = true;
        if (word == "extern") inExtern = true;
    }
}
