#pragma once

#include <string>

struct State;

// Emits a text of whole lines line by line.
void EmitLines(State& state, const std::string& lines);
