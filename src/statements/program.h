// The outputs of the whole run: every file, translated once.
#pragma once

#include <string>
#include <vector>

#include "prelude/order.h"
#include "statements/source_files.h"

extern Program program;

// The output of a file whose translation begins.
FileOutput& BeginOutput(SourceFile& file);
// Ends the run when another source has the same outputs (util.kvl and util.inc in one folder).
void ClaimOutputs(const FileOutput& out);
// A header guard that no other file has: from its base name, with a number behind it when that is taken.
std::string ClaimGuard(const FileOutput& out);
// Lists the header of an included file for the main header, and the file as a dependency.
void NoteInclude(const FileOutput& out);
void SayHeaderOpened(const FileOutput& out);
// Checks what can only be checked at the end, and puts everything into an order that compiles.
void FinishProgram();
// A file is translated: its outputs are written also when a mistake is told behind it.
void NoteFinished(const FileOutput& out);
