// From objects to a program.
#pragma once

#include <string>

#include "kv/job.h"
#include "kv/toolchain.h"

// Links unless the program was linked from these very objects before. Returns false, with what the compiler said, when
// that fails; nothing when it is the fault of the build's folder, which the user has been told unless the build was
// disturbed.
bool MakeProgram(Job& job, CompileJob& compile, std::string& output);
