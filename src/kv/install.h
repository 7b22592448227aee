// Leaving a program where the user wants to have it.
#pragma once

#include <filesystem>

#include "kv/job.h"

// Puts the program, with the shared libraries it loads, where kv build shall leave it. Nothing is written unless all of
// it can be without a loss for the user. Returns false after telling the user what went wrong.
bool Install(const Job& job);

// The same at a place that is known; says nothing when all goes well.
bool InstallAs(const Job& job, const std::filesystem::path& target);
