// What kv tells its user: mistakes with their place, and its own notes. All on the error stream.
#pragma once

#include <string>

enum class Severity { error, warning, note };

// A message about a place in a source. The place may be unknown: line 0, or no file at all.
struct Diagnostic {
    Severity severity = Severity::error;
    std::string file;
    int line = 0;
    int firstColumn = 0, lastColumn = 0;  // bytes of the line, from 1 on; 0 where they are not known
    std::string message;                  // further lines of the message are shown indented
};

// The text of a diagnostic: "file:line: error: message", with the source line under it where it can be read, and
// a mark under what is meant.
std::string Format(const Diagnostic& diagnostic, bool colour);

// Writes a diagnostic, in colour on a terminal unless NO_COLOR is set.
void Show(const Diagnostic& diagnostic);

// "kv: error: message", for what concerns no source.
void ShowProblem(const std::string& message);

// "kv: note: message".
void ShowNote(const std::string& message);

// The path as a user in `folder` would write it: relative where it lies below that folder.
std::string ShortPath(const std::string& path, const std::string& folder);
