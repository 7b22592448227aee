// The sources of the program on their way through the phases: each is collected once, settled once and translated
// once.
#pragma once

#include <string>
#include <vector>

#include "base/journal.h"
#include "collect/first_pass.h"
#include "prelude/output.h"

struct SourceFile {
    FileOutput output;            // its names
    FileOutput* begun = nullptr;  // the outputs themselves, once its translation has begun
    Declarations declarations;
    Chapter declared, translated;
};

// Those whose declarations have been read, in the order in which that was done: the main one is the last.
const std::vector<SourceFile*>& CollectedFiles();
// The source however its path is spelt; null when no first pass has come to it.
SourceFile* FindSourceFile(const std::string& path);

// Reads the declarations of the main source and of everything that it includes, each file where it is met first.
// Mistakes are kept; symbols.complete tells whether all has been read.
void CollectProgram(const std::string& mainSource);

// Settles what was collected.
void SettleProgram();

// A source in a folder whose name ends in .kvh contributes its header only.
bool IsHeaderOnly(const std::string& sourcePath);
