// What kv tells its user: mistakes with their place, and its own notes. All on the error stream.
#pragma once

#include <string>

#include "library/korvel.h"

using korvel::Diagnostic;
using korvel::Severity;

enum class MessageFormat { human, brief, json };

// How messages are shown from here on: "human", "short" or "json". False when this kv was built without it.
bool UseMessageFormat(const std::string& word);
// How they are shown.
MessageFormat UsedMessageFormat();

// The text of a diagnostic for people: "file:line: error: message", the source line under it where it can be read with
// a mark under what is meant, other places that matter, and what may help.
std::string Format(const Diagnostic& diagnostic, bool colour);
// In one line: "file:line:column: error: message".
std::string ShortFormat(const Diagnostic& diagnostic);
// As an object of JSON in one line (json_report.cpp). Empty when kv was built without the library for it.
std::string JsonFormat(const Diagnostic& diagnostic);
bool HasJson();

// Writes a diagnostic; in colour on a terminal unless NO_COLOR is set, or anywhere if CLICOLOR_FORCE is.
void Show(const Diagnostic& diagnostic);

// "kv: error: message", for what concerns no source.
void ShowProblem(const std::string& message);
// The same, for those who give up then: false.
bool Refuse(const std::string& problem);

// "kv: note: message".
void ShowNote(const std::string& message);

// The path as a user in `folder` would write it: relative where it lies below that folder.
std::string ShortPath(const std::string& path, const std::string& folder);

// The word of a severity: "error".
const char* WordOf(Severity severity);
