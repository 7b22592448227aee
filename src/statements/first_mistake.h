// Which mistake a run reports. The statements of an included file are translated where the file is met for the
// second time, but its mistakes count where it is met first. So when something is wrong, the files that are
// still waiting are gone through before it is reported, in the lenient way of a first pass.
#pragma once

#include <functional>
#include <string>

#include "driver/report.h"

// Notes an included file whose declarations have been read and whose statements wait.
void AwaitStatements(const std::string& path, const std::string& outputFolder);

// The strict translation of a file begins, and has found nothing wrong.
void BeginStatements(const std::string& path);
void EndStatements(const std::string& path);

// All declarations of the program have been read.
void NoteAllNamesRead();

// Runs a translation that shows the notes of a first pass. False when something is wrong: it will be met again.
bool GoesThrough(const std::function<void()>& translate);

// True while waiting files are gone through.
bool SearchesFirstMistake();

// Called by an Include met in such a search: whether the file is to be translated strictly now, because the
// names it may use are known. Ends the run when its translation has met the mistake that began the search.
bool SearchesIn(const std::string& path);

// Reports the first mistake of the waiting files, or else the one that was met, and ends the run.
[[noreturn]] void ReportFirstMistake(const Stop& met);
