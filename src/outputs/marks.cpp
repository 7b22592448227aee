#include "outputs/marks.h"

#include <cstdint>
#include <filesystem>

#include "base/paths.h"
#include "base/source_reader.h"
#include "base/utf8.h"
#include "outputs/atomic_file.h"

namespace fs = std::filesystem;

namespace {

std::string MarkPath(const std::string& path) {
    const std::string name = StripFolder(path);
    return path.substr(0, path.size() - name.size()) + "." + name + ".kvt";
}

// A line of a mark: FNV-1a of the text, and its size.
std::string Fingerprint(const std::string& text) {
    std::uint64_t hash = 14695981039346656037U;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    return std::to_string(hash) + " " + std::to_string(text.size()) + "\n";
}

bool Tells(const std::string& marks, const std::string& line) {
    return ("\n" + marks).find("\n" + line) != std::string::npos;
}

bool Mark(const std::string& path, const std::string& text) {
    constexpr std::size_t most = 4096;  // some hundred texts
    const std::string line = Fingerprint(text);
    std::string marks;
    ReadFile(MarkPath(path), marks);
    if (Tells(marks, line)) return true;
    marks += line;
    while (marks.size() > most) marks.erase(0, marks.find('\n') + 1);
    return ReplaceFile(MarkPath(path), marks);
}

void Remove(const std::string& path) {
    std::error_code failed;
    fs::remove(PathOf(path), failed);
}

}  // namespace

bool IsMarked(const std::string& path) {
    std::error_code failed;
    std::string text, marks;
    if (fs::is_symlink(PathOf(path), failed) || !ReadFile(path, text)) return false;
    return ReadFile(MarkPath(path), marks) && Tells(marks, Fingerprint(text));
}

bool WriteMarked(const std::string& path, const std::string& text) {
    if (Mark(path, text) && ReplaceFile(path, text, MarkPath(path) + ".new")) return true;
    RemoveMarked(path);
    return false;
}

void RemoveMarked(const std::string& path) {
    Remove(path);
    Remove(MarkPath(path));
}
