#include "kv/kvt_report.h"

namespace {

using Lines = std::vector<std::string>;

Lines SplitLines(const std::string& text) {
    Lines lines;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        std::size_t length = end - start;
        if (length > 0 && text[end - 1] == '\r') --length;
        lines.push_back(text.substr(start, length));
        start = end + 1;
    }
    return lines;
}

bool StartsWith(const std::string& line, const std::string& start) {
    return line.compare(0, start.size(), start) == 0;
}

bool TakeStart(std::string& line, const std::string& start) {
    if (!StartsWith(line, start)) return false;
    line.erase(0, start.size());
    return true;
}

int NumberAt(const std::string& text, std::size_t at) {
    return static_cast<int>(std::strtol(text.c_str() + at, nullptr, 10));
}

// The lines before a report of open blocks, "If block starting at line 7 is missing 'EndIf'", each become a
// diagnostic at the line where the block starts.
void AddOpenBlocks(const Lines& lines, std::size_t end, const std::string& file,
                   std::vector<Diagnostic>& errors) {
    const std::string mark = " starting at line ";
    std::size_t first = end;
    while (first > 0 && lines[first - 1].find(mark) != std::string::npos) --first;
    for (; first < end; ++first) {
        Diagnostic diagnostic;
        diagnostic.file = file;
        diagnostic.line = NumberAt(lines[first], lines[first].find(mark) + mark.size());
        diagnostic.message = lines[first];
        errors.push_back(diagnostic);
    }
}

// "Error: message", perhaps on several lines, then "File: path" and "Line: number". The last such report counts.
void ParseFatalReport(const Lines& lines, std::vector<Diagnostic>& errors) {
    std::size_t place = lines.size();
    while (place > 1 && !(StartsWith(lines[place - 1], "Line: ") && StartsWith(lines[place - 2], "File: ")))
        --place;
    if (place < 3) return;
    std::size_t start = place - 2;
    while (start > 0 && !StartsWith(lines[start - 1], "Error: ")) --start;
    if (start == 0) return;
    --start;

    Diagnostic diagnostic;
    diagnostic.file = lines[place - 2].substr(6);
    diagnostic.line = NumberAt(lines[place - 1], 6);
    for (std::size_t at = start; at < place - 2; ++at) {
        diagnostic.message += (at > start ? "\n" : "") + lines[at];
    }
    while (TakeStart(diagnostic.message, "Error: ")) {
    }
    AddOpenBlocks(lines, start, diagnostic.file, errors);
    const bool onlyBlocks = StartsWith(diagnostic.message, "Transpilation failed: ");
    if (errors.empty() || !onlyBlocks) errors.push_back(diagnostic);
}

// "Error in path (line 7): message", or "Warning in path ..."
bool ParsePlaced(const std::string& line, const std::string& start, Diagnostic& diagnostic) {
    const std::string mark = " (line ";
    const std::size_t end = line.find("): ");
    if (!StartsWith(line, start) || end == std::string::npos) return false;
    const std::size_t number = line.rfind(mark, end);
    if (number == std::string::npos || number < start.size()) return false;
    diagnostic.file = line.substr(start.size(), number - start.size());
    diagnostic.line = NumberAt(line, number + mark.size());
    diagnostic.message = line.substr(end + 3);
    return true;
}

// On the error stream: mistakes found while a line was split, and clashes of declarations ("ERROR: ..." and
// further lines set in by two blanks).
void ParseErrorStream(const Lines& lines, std::vector<Diagnostic>& errors) {
    for (std::size_t at = 0; at < lines.size(); ++at) {
        Diagnostic diagnostic;
        std::string line = lines[at];
        if (ParsePlaced(line, "Error in ", diagnostic)) {
            errors.push_back(diagnostic);
        } else if (TakeStart(line, "ERROR: ")) {
            diagnostic.message = line;
            while (at + 1 < lines.size() && StartsWith(lines[at + 1], "  ")) {
                diagnostic.message += "\n" + lines[++at].substr(2);
            }
            errors.push_back(diagnostic);
        }
    }
}

// "Warning in path (line 7): message" or, where no line is meant, "Warning: message".
void ParseWarning(std::string line, std::vector<Diagnostic>& warnings) {
    Diagnostic warning;
    warning.severity = Severity::warning;
    if (!ParsePlaced(line, "Warning in ", warning)) {
        if (!TakeStart(line, "Warning: ") && !TakeStart(line, "WARNING: ")) return;
        // A missing file of flags harms nobody: kvt has said each flag as well.
        if (StartsWith(line, "Could not create ")) return;
        warning.message = line;
    }
    warnings.push_back(warning);
}

void ParseNotes(const Lines& lines, KvtReport& report) {
    for (std::string line : lines) {
        line.erase(0, line.find_first_not_of(' '));
        if (TakeStart(line, "- Adding linker flag: ")) {
            report.linkerFlags.push_back(line);
        } else if (TakeStart(line, "Linker flags written to ")) {
            report.linkerFile = line;
        } else {
            ParseWarning(line, report.warnings);
        }
    }
}

}  // namespace

KvtReport ParseKvtReport(const std::string& output, const std::string& errorOutput) {
    KvtReport report;
    const Lines lines = SplitLines(output);
    ParseFatalReport(lines, report.errors);
    if (report.errors.empty()) ParseErrorStream(SplitLines(errorOutput), report.errors);
    ParseNotes(lines, report);
    return report;
}
