// What kvt said, taken apart: its mistakes as diagnostics, its warnings, the program's linker flags.
#pragma once

#include <string>
#include <vector>

#include "kv/diagnostics.h"

struct KvtReport {
    std::vector<Diagnostic> errors;  // paths as kvt wrote them; a message without a place has no file
    std::vector<Diagnostic> warnings;
    std::vector<std::string> linkerFlags;  // in order
    std::string linkerFile;                // the file into which kvt wrote the flags, if it could
};

// Takes what kvt wrote to its standard output and to its error stream.
KvtReport ParseKvtReport(const std::string& output, const std::string& errorOutput);
