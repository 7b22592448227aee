// #line directives, which lead from the C++ back to the source: kv asks for them, and the C++ compiler takes them over
// into its messages and into what debuggers and reports of failures read.
//
// In a program of several units marks are anchored: lines count from the first one of each piece, as those of a file of its
// own ("lib/game.kvl@7" for its seventh anchor), so that a line more in one routine leaves the text of all others as it is.
// Where the anchors stand is written apart, and read when a program tells where it has failed.
#pragma once

#include <string>

#include "prelude/output.h"

// The path of a source from the folder of the main source on. Modules of the installation are not the program's.
std::string ShownPath(const std::string& source);

// The mark of the line for what the piece of the file gets next: "#line 12 \"lib/game.kvl\"" and a line end, without the
// file where that is the one of the mark before. The path counts from the folder of the main source, so that the C++ is the
// same wherever it lies.
std::string LineMark(FileOutput& out, Piece& piece, int line, bool named);
// The mark of the place where translation stands, for what is no piece's; empty unless settings ask for marks.
std::string MarkOfPlace(FileOutput& out);
// The same for what the open piece of the file gets.
std::string MarkOfPiece(FileOutput& out);

// The anchors of the file, a line each: name, blank, line.
std::string AnchorLines(const FileOutput& out);

// What follows is none of the source's.
std::string OwnCodeMark();
