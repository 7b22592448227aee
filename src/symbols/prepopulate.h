// Between the passes: the names of a file's Functions are checked, and its names are announced.
#pragma once

#include "symbols/first_pass.h"

// A Function that is named like a reserved word, a Type, an Element, another Function, a Global or a Const
// ends the run.
void Prepopulate(const Declarations& declarations);
