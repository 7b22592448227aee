// The files that the program is read from.
#pragma once

#include <optional>
#include <string>

#include "base/token_span.h"

// The name scan tells each of them, the main source first.
void AddSourceFile(const std::string& path);

// The file that an Include names, as written; nothing for other statements and for an Include without a text.
std::optional<std::string> IncludedName(TokenSpan statement);

// The path that opens the file of an Include from the working directory.
std::string PathOfInclude(const std::string& name);

// How many Includes a program may have inside its routines, counted each time that one is met.
constexpr int mostParts = 1000;

// True when the file is included inside Functions and Methods only.
bool IsPart(const std::string& source);

// True when another file of the program has the same name, folder and extension aside.
bool BaseNameIsShared(const std::string& source);

// True when the path leads to one of the files that the program is read from, links followed.
bool IsSource(const std::string& path);

// True when a file of the program has this name, folder, extension and case aside.
bool IsBaseName(const std::string& name);
