// What inline C++ reads and changes of the program. It gets at Globals, Fields and routines by their C++ names, so
// code that names none of them does nothing to the program.
#pragma once

#include <string>

#include "analysis/reach_graph.h"

// Reads a line that stands in the routine or loop of the node, or outside of routines with -1.
void ReadInlineEffects(ReachGraph& graph, int node, const std::string& line);
// The node does things outside of the program that nobody looks into.
void NoteForeignEffects(int node);
// What the code outside of routines does when other inline C++ or a function of C calls it.
const EffectSet& EffectsOfOutsideCode();
