// What the compiler says: the fatal report and verbose notes.
#pragma once

#include <string>

// What is said when something is wrong.
struct FatalReport {
    std::string text;
    bool onErrorStream = false;
};

// Prints a report and ends the run with exit status 1. Files already written stay as they are.
[[noreturn]] void EndRun(const FatalReport& report);

// While one of these lives, reports are thrown instead of ending the run.
class ThrownReports {
public:
    ThrownReports();
    ~ThrownReports();
    ThrownReports(const ThrownReports&) = delete;
    ThrownReports& operator=(const ThrownReports&) = delete;
};

// Ends the run with `linesBefore`, "Error: " + message, the current file and the current line on standard
// output. Very long words are cut.
[[noreturn]] void ReportFatal(const std::string& message, const std::string& linesBefore = {});

// The same for want of memory, without needing any.
[[noreturn]] void ReportNoMemory();

// Ends the run with lines on the error stream, without the report's frame.
[[noreturn]] void FailOnErrorStream(const std::string& lines);

// With -warn, says what is odd about the current line of the current file; the run goes on.
void Warn(const std::string& message);

// Prints line + end of line on standard output in verbose mode only.
void VerboseNote(const std::string& line);

// Prints line + end of line on standard output, always.
void Say(const std::string& line);
