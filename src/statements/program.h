// The outputs of the whole run: every file translated strictly, once.
#pragma once

#include <string>

#include "prelude/order.h"

extern Program program;

// The output of a source already translated strictly, or being translated, however its path is spelt; null
// when there is none.
FileOutput* FindOutput(const std::string& source);
// A fresh output for a source. Lenient runs get one that is not part of the program.
FileOutput& NewOutput(const std::string& source, bool lenientRun);
// Ends the run when another source has the same outputs (util.kvl and util.inc in one folder).
void ClaimOutputs(const FileOutput& out);
// A header guard that no other file has: the wanted one, with a number behind it when that is taken.
std::string ClaimGuard(const FileOutput& out, const std::string& wanted);
// Puts everything into an order that compiles.
void FinishProgram();
// Writes the outputs of a finished program, as far as they have changed.
void WriteProgram();
// A file is translated: its outputs are written by WriteFinished even when a mistake is met later.
void NoteFinished(const FileOutput& out);
void WriteFinished();
