// A program as several translation units, for builds that compile only what an edit has changed:
//     NAME.h              what all of them need: forward declarations, prototypes, Globals as extern, class bodies
//                         without the bodies of their Methods
//     units/prelude.h     the support code, which NAME.h includes first
//     units/globals.cpp   Globals in the order in which they take their values, what there is once, main()
//     units/1.cpp ...     some routines of one source each
//     NAME.cpp            includes all units, and so is the program as one
//     NAME.places         with #line marks: where their anchors stand (prelude/line_marks.h)
//     NAME.units          the units, one a line, units/globals.cpp first
// With KV_BATCH defined the routines of a unit give way to those of another one that is compiled without it.
#pragma once

#include <functional>
#include <string>

#include "base/long_text.h"
#include "prelude/order.h"

constexpr const char* folderOfUnits = "units/";

// Whether the program has nothing in it that could not be told apart so. Known when all declarations are.
bool CanComeInUnits();

// Parts the routines of a file whose pieces are all there from these, where only the declarations of Methods stay.
void SetRoutinesApart(FileOutput& out);

struct ProgramFile {
    std::string path;
    LongText text;
    bool stays = false;  // it is there already
};

// Whether the units that lie there already have the numbers that they get today.
bool UnitsStayInPlace(const Program& program);

// Hands over all files of the program one by one, NAME.units last. It takes the texts out of the pieces.
void MakeUnits(Program& program, const std::function<void(ProgramFile&&)>& take);

// The list of units of the main file.
std::string UnitListPath(const FileOutput& main);
