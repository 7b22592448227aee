#pragma once

#include <string_view>

#include "expressions/code.h"

struct State;

// Emits a text of whole lines line by line.
void EmitLines(State& state, const Code& lines);
inline void EmitLines(State& state, std::string_view lines) { EmitLines(state, Code(std::string(lines))); }
inline void EmitLines(State& state, const std::string& lines) { EmitLines(state, Code(lines)); }
