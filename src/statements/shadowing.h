// Names for variables whose declaration mentions what their name has meant so far.
#pragma once

#include <string>

#include "base/token_span.h"

// The C++ name of a Local or counter about to be declared. In `Local n = n + 1` and `For n = 1 To n` the name
// means something outside that C++ would find no more, so the new variable gets a name apart.
std::string NameBeside(const std::string& name, TokenSpan declaration);
