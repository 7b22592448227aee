#pragma once

#include <string_view>

struct State;

// Emits a text of whole lines line by line.
void EmitLines(State& state, std::string_view lines);
