// From Korvel to C++: calls kvt and shows what it has to say.
#pragma once

#include <string>
#include <vector>

#include "kv/job.h"

// The command that translates the job's source.
std::vector<std::string> TranslateCommand(const Job& job);

// The dependency record that kvt leaves for this program.
std::string DependencyRecord(const Job& job);

// Translates. Sets the job's linker flags and warnings. Returns false after showing the mistakes in the source.
bool Translate(Job& job);
