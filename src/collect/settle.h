// Between the passes, when the declarations of all files have been read: what waits for names of other files.
#pragma once

#include "collect/first_pass.h"

// Settles the parameters of the file's routines and the prototypes. Mistakes are kept.
void SettleRoutines(Declarations& declarations);

// The types that Globals, Consts and Fields of the file take from their values.
void SettleTypes(const Declarations& declarations);
// The same for those of files whose declarations could not be read to the end.
void SettleLeftTypes();

// With -v: announces the file's names, and the classes met so far.
void SayNames(const Declarations& declarations);

// A Function that is named like a reserved word, a Type, an Element, another Function, a Global or a Const is a
// mistake. Mistakes are kept.
void CheckFunctionNames(const Declarations& declarations);
