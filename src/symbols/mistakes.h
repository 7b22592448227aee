// All mistakes of a program. kvt tells the one that comes first in the journal. What only follows from an earlier
// mistake is no mistake of its own: names that a wrong statement declares or cannot find are doubtful from
// there on, and whatever is wrong in a statement that mentions a doubtful name is not told.
#pragma once

#include <string>
#include <vector>

#include "base/report.h"
#include "base/token_span.h"

// Called where a mistake has been caught: it is kept, if the statement mentions nothing doubtful, and the
// statement's own names become doubtful. False when it only follows from doubtful names.
bool KeepMistake(const Stop& stop, TokenSpan statement);

// An Include of the current line whose file is not read: mistakes about names that are not known mention it.
void NoteUnreadFile(const std::string& name);

// Doubts the name until the routine under way ends.
void Doubt(const Word& name);
bool IsDoubtful(const Word& name);
// The names of a routine that ends are doubted no more.
void EndDoubtsOfRoutine();

bool AnyMistakes();
// How many have been kept.
std::size_t MistakesSoFar();
// What has been kept so far, each mistake once, by file and line.
std::vector<korvel::Diagnostic> KeptMistakes();
