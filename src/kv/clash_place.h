// Where a clash of two declarations stands: kvt names them but not their place.
#pragma once

#include <string>

#include "kv/diagnostics.h"

// For a message that begins with "Field 'x'", "Global variable 'x'" or "Const 'x'": sets the file and line where
// that is declared, in the main source or a file it includes. Otherwise, or when it is not found, the file becomes
// the main source and the line stays 0.
void FindClash(const std::string& mainSource, Diagnostic& diagnostic);
