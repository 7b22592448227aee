#include "base/report.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "base/journal.h"
#include "base/run.h"
#include "base/settings.h"

static std::vector<korvel::Diagnostic>* silentFor =
    nullptr;  // takes the warnings of a run that prints nothing
static std::vector<Slip> slips;
static const PartOfRun partOfRun(slips);

static void Write(std::FILE* stream, const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stream);
}

static bool IsInsideCharacter(const std::string& text, std::size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U;
}

// `text` from `at` to `end` with no more than `first` bytes from its start and `last` from its end.
static std::string Abridged(const std::string& text, std::size_t at, std::size_t end, std::size_t first,
                            std::size_t last) {
    if (end - at <= first + last) return text.substr(at, end - at);
    std::size_t stop = at + first, resume = end - last;
    while (IsInsideCharacter(text, stop)) --stop;
    while (IsInsideCharacter(text, resume)) ++resume;
    return text.substr(at, stop - at) + "..." + text.substr(resume, end - resume);
}

// Words of a megabyte say no more than their beginnings, and neither do texts.
static std::string Shortened(const std::string& message) {
    if (message.size() <= 500) return message;
    std::string text;
    for (std::size_t at = 0; at < message.size();) {
        const std::size_t end = std::min(message.find_first_of(" \n", at), message.size());
        text += Abridged(message, at, end, 400, 100);
        if (end < message.size()) text += message[end];
        at = end + 1;
    }
    return Abridged(text, 0, text.size(), 3000, 1000);
}

static korvel::Diagnostic HereIs(const std::string& message) {
    korvel::Diagnostic diagnostic;
    diagnostic.file = settings.currentFile;
    diagnostic.line = settings.currentLine;
    diagnostic.message = message;
    return diagnostic;
}

static std::vector<korvel::Diagnostic> MistakesOf(const std::vector<UnclosedBlock>& blocks) {
    std::vector<korvel::Diagnostic> mistakes;
    for (const UnclosedBlock& block : blocks) {
        mistakes.push_back(HereIs(block.report));
        mistakes.back().line = block.line;
        mistakes.back().hint = block.hint;
    }
    return mistakes;
}

static std::string QuotedHere(const std::vector<UnclosedBlock>& blocks, const std::string& message) {
    std::string text;
    for (const UnclosedBlock& block : blocks) text += block.report + "\n";
    return text + "Error: " + message + "\nFile: " + settings.currentFile +
           "\nLine: " + std::to_string(settings.currentLine) + "\n\n";
}

static Stop StopHere(const Wording& message, const std::vector<UnclosedBlock>& blocks = {}) {
    Stop stop{MistakesOf(blocks), QuotedHere(blocks, Shortened(message.quoted))};
    stop.blocks = blocks;
    stop.mistakes.push_back(HereIs(Shortened(message.plain)));
    if (message.quoted != message.plain) stop.mistakes.back().quoted = Shortened(message.quoted);
    stop.mistakes.back().hint = message.hint;
    return stop;
}

void ReportFatal(const Wording& message, const std::vector<UnclosedBlock>& blocks) {
    throw StopHere(message, blocks);
}

static Stop StopHere(const Wording& message, TokenSpan about) {
    Stop stop = StopHere(message);
    stop.subject = {about.first, about.Copy()};
    return stop;
}

void ReportFatal(const Wording& message, TokenSpan about) { throw StopHere(message, about); }

void ReportMissing(const std::string& message, const std::string& lookedFor, TokenSpan about) {
    Stop stop = StopHere(message, about);
    stop.sought = Sought::File;
    stop.mistakes.back().hint = lookedFor;
    throw Stop(stop);
}

void ReportFatal(const Wording& message, TokenSpan about, const Elsewhere& other) {
    Stop stop = StopHere(message, about);
    stop.others.push_back(other);
    throw Stop(stop);
}

void ReportFatal(const Wording& message, TokenSpan about, Sought sought) {
    Stop stop = StopHere(message, about);
    stop.sought = sought;
    throw Stop(stop);
}

void ReportUnknown(const Wording& message, TokenSpan about, Sought sought, const ClassInfo* owner) {
    Stop stop = StopHere(message, about);
    stop.ofUnknown = true;
    stop.sought = sought;
    stop.owner = owner;
    throw Stop(stop);
}

void ReportUnknownStatement(const std::string& message, TokenSpan about, const std::string& advice) {
    Stop stop = StopHere(message + advice, about);
    stop.mistakes.back().message = Shortened(message);
    stop.ofUnknown = true;
    stop.sought = Sought::Statement;
    throw Stop(stop);
}

void ReportOpenBlocks(const std::string& heading, const std::vector<UnclosedBlock>& blocks,
                      const std::string& message) {
    Stop stop{MistakesOf(blocks), heading + QuotedHere(blocks, message)};
    stop.blocks = blocks;
    stop.isElsewhere = true;
    throw Stop(stop);
}

static Stop StopOnErrorStream(const korvel::Diagnostic& mistake, const std::string& lines) {
    std::string text = Shortened(lines);
    if (text.empty() || text.back() != '\n') text += '\n';
    Stop stop{{mistake}, text};
    stop.onErrorStream = true;
    return stop;
}

void FailOnErrorStream(const korvel::Diagnostic& mistake, const std::string& lines) {
    Stop stop = StopOnErrorStream(mistake, lines);
    stop.isElsewhere = true;
    throw Stop(stop);
}

void FailOnErrorStream(const std::string& lines, TokenSpan about) {
    const std::string mark = "ERROR: ";
    const std::string message = lines.compare(0, mark.size(), mark) == 0 ? lines.substr(mark.size()) : lines;
    Stop stop = StopOnErrorStream(HereIs(Shortened(message)), lines);
    stop.subject = {about.first, about.Copy()};
    throw Stop(stop);
}

void ReportNoMemory() {
    std::fputs("Error: Not enough memory\nFile: ", stdout);
    const std::string& file = settings.currentFile.empty() ? settings.mainSource : settings.currentFile;
    std::fwrite(file.data(), 1, file.size(), stdout);  // which may not have been made yet
    std::fprintf(stdout, "\nLine: %d\n\n", settings.currentLine);
    std::fflush(stdout);
    std::_Exit(1);  // whatever else is to be done needs memory, too
}

void Warn(const char* name, const std::string& message, const Stop::Subject& about) {
    if (!settings.warnings) return;
    Slip& slip = slips.emplace_back();
    slip.warning = HereIs(Shortened(message));
    slip.warning.severity = korvel::Severity::Warning;
    slip.warning.name = name;
    slip.about = about;
}

void PutSlip(Slip slip) { slips.push_back(std::move(slip)); }

const std::vector<Slip>& NotedSlips() { return slips; }

std::vector<Slip> TakeSlips() { return std::exchange(slips, {}); }

void TellWarning(const korvel::Diagnostic& warning) {
    if (silentFor != nullptr) return silentFor->push_back(warning);
    Say("Warning in " + warning.file + " (line " + std::to_string(warning.line) + "): " + warning.message);
}

bool IsSilent() { return silentFor != nullptr; }

void WarnOfProgram(const std::string& message, const std::string& indentation, const std::string& hint) {
    if (silentFor == nullptr) return Say(indentation + "Warning: " + message);
    korvel::Diagnostic& warning = silentFor->emplace_back();
    warning.file = settings.mainSource;
    warning.message = message;
    warning.hint = hint;
    warning.severity = korvel::Severity::Warning;
}

void VerboseNote(const std::string& line) {
    if (settings.verbose) Say(line);
}

void DebugLog(const std::string& message) { VerboseNote("[DEBUG] " + message); }

void Say(const std::string& line) { SayLines(line + "\n", false); }

void SayLines(const std::string& lines, bool onErrorStream) {
    if (silentFor == nullptr && !NoteText(lines, onErrorStream)) SayText(lines, onErrorStream);
}

void SayText(const std::string& lines, bool onErrorStream) { Write(onErrorStream ? stderr : stdout, lines); }

void SayQuoted(const Stop& stop) {
    std::fflush(stdout);  // what was said before comes first where both streams go to one place
    Write(stop.onErrorStream ? stderr : stdout, stop.quoted);
}

Silence::Silence(std::vector<korvel::Diagnostic>& warnings) { silentFor = &warnings; }
Silence::~Silence() { silentFor = nullptr; }
