// What routines do, as numbers that outlast the run: where that of a routine is what it was in another translation of a
// program with the same declarations, nobody who calls it can tell the two apart.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

#include "symbols/symbols.h"

class RoutineDigests {
public:
    // Reads all files of the program, where nobody has done so yet.
    RoutineDigests();

    // Of the Functions and Methods of a name, loops in them included; 0 where there is none.
    std::uint64_t Of(Token name);
    // Of the handlers of timers.
    std::uint64_t OfTimers();
    // When nobody asks for effects any more, nor for this digest once more: frees what is known of the routine.
    static void Forget(Token name);

private:
    std::vector<std::uint64_t> names;  // of the nodes; 0 for loops, which are part of their routines
    std::vector<std::uint64_t> facts;  // what is known of the nodes but for their effects and what they call

    std::uint64_t OfNode(int node, int depth) const;
};

// Reads all files of the program, where nobody has done so yet.
void ReadRoutines();
// The names of all Functions and Methods.
std::vector<Token> NamesOfRoutines();

// The pieces of the program that may run one of some routines.
class Concerned {
public:
    explicit Concerned(const std::vector<Token>& routines);

    // Whether that may be any piece: handlers of timers may run in every call, and Elements come about where nobody names
    // them.
    bool IsEverything() const;
    bool HasRoutine(Token name) const;
    // Making an object or record of the class.
    bool HasMaking(const ClassInfo& cls) const;
    // The initial values of Globals and Consts of a file.
    bool HasValuesOf(const std::string& source) const;

private:
    std::unordered_set<int> nodes;
};
