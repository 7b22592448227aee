// Calls of the C++ compiler, and what they are told about a job.
#pragma once

#include <string>
#include <vector>

#include "kv/job.h"
#include "kv/precompiled.h"
#include "kv/toolchain.h"

CompileJob CompileJobOf(const Job& job);
PrecompileJob PrecompileJobOf(const Job& job);

// One call of the compiler; `work` tells the user what it is for. `output` receives what it said on its error stream.
bool RunCompiler(const Job& job, const std::vector<std::string>& command, const std::string& work,
                 std::string& output);

// Several calls side by side, each with a file of its own to write (`targets`), beside which goes what it said. When one
// fails, the others are ended.
bool RunCompilers(const Job& job, const std::vector<std::vector<std::string>>& commands,
                  const std::vector<std::string>& targets, const std::string& work);

// How many calls are made side by side: as the user wants it, else one for each core.
std::size_t AtOnce(const Options& options);

// Tells the user what the compiler said, unless the build was disturbed.
void ShowFailureUnlessDisturbed(Job& job, const std::string& output);

// Puts a complete result into its place.
bool Finish(const Job& job, const std::string& newFile, const std::string& file);
