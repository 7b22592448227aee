// What linkers say about a translated program, told in terms of the Korvel source.
#pragma once

#include <string>

#include "kv/diagnostics.h"
#include "kv/source_traces.h"

// Whether a line of the output is about a library that is not there or an Extern function that none defines; the
// diagnostic says so then. `isStatic`: all libraries are to go into the program.
bool ExplainLinkerLine(const std::string& line, const SourceTraces& sources, bool isStatic,
                       Diagnostic& diagnostic);

// Whether what is missing is missed by a library of somebody else's; the diagnostic names it then.
bool ExplainLackOfLibrary(const std::string& output, const SourceTraces& sources, bool isStatic,
                          Diagnostic& diagnostic);
