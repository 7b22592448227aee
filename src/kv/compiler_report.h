// What the C++ compiler said about a translated program, told in terms of the Korvel source.
#pragma once

#include <string>
#include <vector>

#include "kv/diagnostics.h"

// The mistakes that the user can mend: C++ code of InlineCpp blocks, headers of the user's own, libraries that the
// linker misses; and what the compiler could not do for reasons of its own. Empty when the output blames C++ that is not
// the user's, which makes it a fault of the translation.
// `sources` are the Korvel files of the program, `cppFolder` holds the generated files, `sourceFolder` the user's. `isStatic`:
// all libraries were to go into the program.
std::vector<Diagnostic> ExplainCompilerOutput(const std::string& output,
                                              const std::vector<std::string>& sources,
                                              const std::string& cppFolder, const std::string& sourceFolder,
                                              bool isStatic = false);
