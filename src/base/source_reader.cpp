#include "base/source_reader.h"

#include <cstdio>
#include <filesystem>
#include <unordered_map>

#include "base/report.h"
#include "base/run.h"
#include "base/utf8.h"

namespace {

std::unordered_map<std::string, std::string> overlays;  // by full path
const PartOfRun partOfRun(overlays);

std::string FullPath(const std::string& path) {
    std::error_code failed;
    return TextOf(std::filesystem::absolute(PathOf(path), failed).lexically_normal());
}

// Null for a path that has none.
const std::string* FindOverlay(const std::string& path) {
    if (overlays.empty()) return nullptr;
    const auto found = overlays.find(FullPath(path));
    return found == overlays.end() ? nullptr : &found->second;
}

}  // namespace

void PutOverlay(const std::string& path, const std::string& text) { overlays[FullPath(path)] = text; }

bool IsFile(const std::string& path) {
    std::error_code failed;
    return FindOverlay(path) != nullptr || std::filesystem::is_regular_file(PathOf(path), failed);
}

bool IsNoFile(const std::string& path) {
    if (FindOverlay(path) != nullptr) return false;
    std::error_code failed;
    const auto kind = std::filesystem::status(PathOf(path), failed).type();
    using Kind = std::filesystem::file_type;
    return kind != Kind::regular && kind != Kind::not_found && kind != Kind::none;
}

bool ReadFile(const std::string& path, std::string& text) {
    text.clear();
    if (const std::string* overlay = FindOverlay(path)) {
        text = *overlay;
        return true;
    }
    if (IsNoFile(path)) return false;  // a pipe would keep us waiting
    std::FILE* file = OpenFile(path, "rb");
    if (!file) return false;
    char buffer[65536];
    std::size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0) text.append(buffer, got);
    const bool complete = std::ferror(file) == 0;
    std::fclose(file);
    return complete;
}

void RefuseNoFile(const std::string& path) {
    if (IsNoFile(path)) ReportFatal("'" + path + "' is no file");
}

std::size_t ByteOrderMarkOf(std::string_view text) {
    const std::string_view mark = "\xEF\xBB\xBF";
    return text.substr(0, mark.size()) == mark ? mark.size() : 0;
}

bool SourceReader::Open(const std::string& path) {
    const bool opened = ReadFile(path, text);
    begin = ByteOrderMarkOf(text);
    Rewind();
    return opened;
}

std::string_view SourceReader::TakeLine() {
    if (AtEnd()) return {};
    std::size_t end = text.find('\n', position);
    if (end == std::string::npos) end = text.size();
    std::string_view line(text.data() + position, end - position);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    position = end + 1;
    return line;
}

void SourceReader::Rewind() { position = begin; }
