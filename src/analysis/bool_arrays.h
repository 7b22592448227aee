// Which arrays of Bool somebody gets a bool* or bool& into. A std::vector<bool> packs its items and gives out
// neither; all other arrays of Bool are plain vectors, but for those of fast programs. Errs on the side of more.
#pragma once

#include <string>

// Whether an array of the name, or a row of it, goes to a parameter, or Input reads into one of its items. The
// first question reads all files of the program once.
bool HandsOnBools(const std::string& name, int dimensions);
// Whether some array of Bool of the program does; arrays that calls return are such then.
bool AnyHandsOnBools();
// Whether such a question will read no file any more.
bool AreBoolArraysKnown();

// Notes it of all Globals and Fields, before anything is translated: Functions may use what is declared further down.
void NoteHandedOnBools();
