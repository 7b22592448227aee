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
const char noteColour[] = "\033[1;36m";
const std::size_t numberWidth = 5;

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
std::string Mark(const std::string& line, const korvel::Range& range) {
    const auto first = static_cast<std::size_t>(range.firstColumn);
    const auto last = std::min(static_cast<std::size_t>(range.lastColumn), shownLength);
    if (first == 0 || first > last || last > line.size()) return "";
    return std::string(ColumnsOf(line.substr(0, first - 1)), ' ') + "^" +
           std::string(ColumnsOf(line.substr(first - 1, last - first + 1)) - 1, '~');
}

std::string Place(const korvel::Range& range) {
    if (range.file.empty()) return "kv: ";
    if (range.line <= 0) return range.file + ": ";
    return range.file + ":" + std::to_string(range.line) + ": ";
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

// The line of a place with its mark, and a word on it; empty where the line cannot be read.
std::string Excerpt(const korvel::Range& range, const std::string& word, const char* colour) {
    const std::string line = SourceLine(range.file, range.line);
    const std::string source = Shown(line);
    if (source.empty()) return "";
    std::string number = std::to_string(range.line);
    if (number.size() < numberWidth) number.insert(0, numberWidth - number.size(), ' ');
    std::string text = number + " | " + source + "\n";
    std::string mark = Mark(line, range);
    if (mark.empty() && word.empty()) return text;
    if (mark.empty()) mark = std::string(std::min(line.find_first_not_of(" \t"), line.size()), ' ') + "^";
    if (!word.empty()) mark += " " + word;
    return text + std::string(number.size(), ' ') + " | " +
           (colour != nullptr ? colour + mark + plain : mark) + "\n";
}

// The excerpts of the diagnostic and of its other places in one file, in the order of the lines.
std::string Excerpts(const Diagnostic& diagnostic, const char* colour) {
    std::string before, behind;
    for (const korvel::Related& related : diagnostic.related) {
        const bool sameFile = related.file == diagnostic.file;
        const std::string excerpt =
            Excerpt(related, sameFile ? related.message : "", colour == nullptr ? nullptr : noteColour);
        if (sameFile && related.line < diagnostic.line)
            before += excerpt;
        else
            behind += (sameFile ? "" : "  " + Place(related) + related.message + "\n") + excerpt;
    }
    return before + Excerpt(diagnostic, "", colour) + behind;
}

bool UsesColours() {
    const auto isSet = [](const char* name) {
        const char* value = std::getenv(name);
        return value != nullptr && *value != '\0';
    };
    if (isSet("NO_COLOR")) return false;
    return (isSet("CLICOLOR_FORCE") && std::string(std::getenv("CLICOLOR_FORCE")) != "0") ||
           ErrorStreamHasColours();
}

MessageFormat used = MessageFormat::human;

}  // namespace

bool UseMessageFormat(const std::string& word) {
    used = word == "json"    ? MessageFormat::json
           : word == "short" ? MessageFormat::brief
                             : MessageFormat::human;
    return used != MessageFormat::json || HasJson();
}

MessageFormat UsedMessageFormat() { return used; }

const char* WordOf(Severity severity) { return severityRows[static_cast<int>(severity)].word; }

std::string Format(const Diagnostic& diagnostic, bool colour) {
    const SeverityRow& row = severityRows[static_cast<int>(diagnostic.severity)];
    const std::string kind = std::string(row.word) + ": ";
    const std::string name = diagnostic.name.empty() ? "" : " [" + diagnostic.name + "]";
    std::string text = colour ? bold + Place(diagnostic) + plain + row.colour + kind + plain + bold +
                                    Indented(diagnostic.message) + plain + name
                              : Place(diagnostic) + kind + Indented(diagnostic.message) + name;
    text += "\n" + Excerpts(diagnostic, colour ? row.colour : nullptr);
    if (diagnostic.hint.empty()) return text;
    return text + (colour ? std::string("    ") + noteColour + "hint: " + plain : "    hint: ") +
           Indented(diagnostic.hint) + "\n";
}

std::string ShortFormat(const Diagnostic& diagnostic) {
    std::string place = Place(diagnostic);
    if (diagnostic.line > 0 && diagnostic.firstColumn > 0)
        place.insert(place.size() - 1, std::to_string(diagnostic.firstColumn) + ":");
    std::string message = diagnostic.message;
    std::replace(message.begin(), message.end(), '\n', ' ');
    const std::string name = diagnostic.name.empty() ? "" : " [" + diagnostic.name + "]";
    return place + WordOf(diagnostic.severity) + ": " + message + name + "\n";
}

void Show(const Diagnostic& diagnostic) {
    const std::string text = used == MessageFormat::human   ? Format(diagnostic, UsesColours())
                             : used == MessageFormat::brief ? ShortFormat(diagnostic)
                                                            : JsonFormat(diagnostic);
    std::fflush(stdout);
    std::fwrite(text.data(), 1, text.size(), stderr);
}

static void ShowOwn(Severity severity, const std::string& message) {
    Diagnostic diagnostic;
    diagnostic.severity = severity;
    diagnostic.message = message;
    Show(diagnostic);
}

void ShowProblem(const std::string& message) { ShowOwn(Severity::Error, message); }

bool Refuse(const std::string& problem) {
    ShowProblem(problem);
    return false;
}

void ShowNote(const std::string& message) { ShowOwn(Severity::Note, message); }

std::string ShortPath(const std::string& path, const std::string& folder) {
    const std::filesystem::path whole = PathOf(path).lexically_normal();
    const std::filesystem::path relative = whole.lexically_relative(PathOf(folder).lexically_normal());
    if (relative.empty() || *relative.begin() == "..") return TextOf(whole);
    return TextOf(relative);
}
