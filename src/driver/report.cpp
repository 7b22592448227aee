#include "driver/report.h"

#include <cstdio>
#include <cstdlib>

#include "driver/settings.h"

static void Write(std::FILE* stream, const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stream);
}

void ReportFatal(const std::string& message) {
    Write(stdout, "Error: " + message + "\nFile: " + settings.currentFile +
                      "\nLine: " + std::to_string(settings.currentLine) + "\n\n");
    std::exit(1);
}

void FailOnErrorStream(const std::string& lines) {
    std::fflush(stdout);  // what was said before comes first where both streams go to one place
    Write(stderr, lines);
    if (lines.empty() || lines.back() != '\n') Write(stderr, "\n");
    std::exit(1);
}

void Warn(const std::string& message) {
    if (!settings.warnings) return;
    Say("Warning in " + settings.currentFile + " (line " + std::to_string(settings.currentLine) +
        "): " + message);
}

void DebugLog(const std::string& message) {
    if (settings.verbose) Say("[DEBUG] " + message);
}

void VerboseNote(const std::string& line) {
    if (settings.verbose) Say(line);
}

void Say(const std::string& line) {
    Write(stdout, line);
    std::fputc('\n', stdout);
}
