#include "kv/diagnostics.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "base/utf8.h"
#include "kv/platform.h"
#include "kv/progress.h"

namespace {

struct SeverityRow {
    const char* word;
    const char* colour;
};

const SeverityRow severityRows[] = {
    {"error", "\033[1;31m"}, {"warning", "\033[1;35m"}, {"note", "\033[1;36m"}};
const char bold[] = "\033[1m";
const char plain[] = "\033[0m";

// A source line longer than this is cut when shown.
const std::size_t shownLength = 300;

// The line of a file as it stands. Empty when there is none.
std::string SourceLine(const std::string& file, int line) {
    std::error_code ignored;
    if (line <= 0 || !std::filesystem::is_regular_file(PathOf(file), ignored)) return "";
    std::ifstream stream(PathOf(file), std::ios::binary);
    std::string text;
    for (int at = 0; at < line; ++at) {
        if (!std::getline(stream, text)) return "";
    }
    return text;
}

// The line, fit for a terminal: control characters become blanks.
std::string Shown(std::string text) {
    if (text.size() > shownLength) text = text.substr(0, shownLength) + " ...";
    while (!text.empty() && (text.back() == '\r' || text.back() == ' ')) text.pop_back();
    for (char& c : text) {
        const unsigned char code = static_cast<unsigned char>(c);
        if (code < 32 || code == 127) c = ' ';
    }
    return text;
}

// "^~~~" under these bytes of the line; empty where they are not known or not shown.
std::string Mark(const std::string& line, const Diagnostic& diagnostic) {
    const auto first = static_cast<std::size_t>(diagnostic.firstColumn);
    const auto last = std::min(static_cast<std::size_t>(diagnostic.lastColumn), shownLength);
    if (first == 0 || first > last || last > line.size()) return "";
    return std::string(ColumnsOf(line.substr(0, first - 1)), ' ') + "^" +
           std::string(ColumnsOf(line.substr(first - 1, last - first + 1)) - 1, '~');
}

std::string Place(const Diagnostic& diagnostic) {
    if (diagnostic.file.empty()) return "kv: ";
    if (diagnostic.line <= 0) return diagnostic.file + ": ";
    return diagnostic.file + ":" + std::to_string(diagnostic.line) + ": ";
}

// Lines of the message after the first are set in by four blanks.
std::string Indented(const std::string& message) {
    std::string text;
    bool begins = false;
    for (const char c : message) {
        if (begins && c == ' ') continue;
        text += c;
        begins = c == '\n';
        if (begins) text += "    ";
    }
    return text;
}

}  // namespace

std::string Format(const Diagnostic& diagnostic, bool colour) {
    const SeverityRow& row = severityRows[static_cast<int>(diagnostic.severity)];
    const std::string kind = std::string(row.word) + ": ";
    std::string text = colour ? bold + Place(diagnostic) + plain + row.colour + kind + plain + bold +
                                    Indented(diagnostic.message) + plain
                              : Place(diagnostic) + kind + Indented(diagnostic.message);
    text += "\n";
    const std::string line = SourceLine(diagnostic.file, diagnostic.line);
    const std::string source = Shown(line);
    if (source.empty()) return text;
    std::string number = std::to_string(diagnostic.line);
    if (number.size() < 5) number.insert(0, 5 - number.size(), ' ');
    text += number + " | " + source + "\n";
    const std::string mark = Mark(line, diagnostic);
    if (mark.empty()) return text;
    const std::string blanks(number.size(), ' ');
    return text + blanks + " | " + (colour ? row.colour + mark + plain : mark) + "\n";
}

void Show(const Diagnostic& diagnostic) {
    const char* noColour = std::getenv("NO_COLOR");
    const bool colour = (noColour == nullptr || *noColour == '\0') && ErrorStreamHasColours();
    const std::string text = Format(diagnostic, colour);
    std::fflush(stdout);
    std::fwrite(text.data(), 1, text.size(), stderr);
}

static void ShowOwn(Severity severity, const std::string& message) {
    Diagnostic diagnostic;
    diagnostic.severity = severity;
    diagnostic.message = message;
    Show(diagnostic);
}

void ShowProblem(const std::string& message) { ShowOwn(Severity::error, message); }

void ShowNote(const std::string& message) { ShowOwn(Severity::note, message); }

std::string ShortPath(const std::string& path, const std::string& folder) {
    const std::filesystem::path whole = PathOf(path).lexically_normal();
    const std::filesystem::path relative = whole.lexically_relative(PathOf(folder).lexically_normal());
    if (relative.empty() || *relative.begin() == "..") return TextOf(whole);
    return TextOf(relative);
}
