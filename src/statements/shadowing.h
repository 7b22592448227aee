// Names for variables beside what their name has meant so far.
#pragma once

#include <string>

#include "base/token_span.h"
#include "statements/state.h"

// The C++ name of a Local or loop variable about to be declared. In `Local n = n + 1` and `For n = 1 To n` the name
// means something outside that C++ would find no more, so the new variable gets a name apart. So does one that hides
// an array of Elements, which is freed wherever the routine is left.
std::string NameBeside(const State& state, const std::string& name, TokenSpan declaration);

// Behind the declaration of a variable, which may have a name apart.
void NoteNameApart(State& state, const std::string& name, const std::string& cppName);
// Inline C++ that says the plain name of such a variable gets a reference of that name.
void GivePlainNames(State& state, const std::string& inlineCpp);
