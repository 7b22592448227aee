// Puts the pieces of the whole program into an order that compiles, whatever the order of declaration.
// Programs whose source order compiles keep it, line for line.
#pragma once

#include <deque>
#include <functional>

#include "prelude/output.h"

// All outputs of the run, the main file's last in the list of headers.
struct Program {
    std::deque<FileOutput> files;  // every file translated, stable addresses
    FileOutput* main = nullptr;
    std::vector<FileOutput*> headers;  // in the order in which the main header includes them, main last
};

// Calls visit(file, piece) for every piece in the order in which the C++ compiler sees them.
void ForEachPiece(Program& program, const std::function<void(FileOutput&, Piece&)>& visit);
// What is left of a Method in its class is the declaration; returns the definition, which stands outside.
Piece TakeMethodBody(Piece& method);

// Moves class bodies before those that hold them by value; Method bodies, Functions and definitions of
// Globals behind the class bodies that they use.
void OrderClasses(Program& program);
void OrderRoutines(Program& program);
void OrderGlobals(Program& program);
// Adds the forward declarations that prototypes and extern lines of a header need.
void CompleteHeaders(Program& program);
