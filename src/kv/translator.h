// The process that translates: kv itself, called by kv, so that a translation that crashes, runs out of memory or is
// interrupted takes nothing with it.
#pragma once

#include <string>
#include <vector>

#include "kv/job.h"

// The command that translates the job's source, or looks for mistakes in it.
std::vector<std::string> TranslatorCommand(const Job& job);

// Whether these words of kv's command line are such a command.
bool IsTranslatorCommand(const std::vector<std::string>& arguments);

// Does what the command says and leaves what was found out in the job's file for it. Returns an exit status.
int TranslateAsCommanded(const std::vector<std::string>& arguments);
