// What the compiler says: the fatal report, the debug log and verbose notes.
#pragma once

#include <string>

// Prints "Error: " + message, the current file and the current line on standard output and
// ends the run with exit status 1. Files already written stay as they are. Very long words are cut.
[[noreturn]] void ReportFatal(const std::string& message);

// The same for want of memory, without needing any.
[[noreturn]] void ReportNoMemory();

// Prints lines on the error stream and ends the run with exit status 1, without the report's frame.
[[noreturn]] void FailOnErrorStream(const std::string& lines);

// With -warn, says what is odd about the current line of the current file; the run goes on.
void Warn(const std::string& message);

// Prints "[DEBUG] " + message in verbose mode.
void DebugLog(const std::string& message);

// Prints line + end of line on standard output in verbose mode only.
void VerboseNote(const std::string& line);

// Prints line + end of line on standard output, always.
void Say(const std::string& line);
