// What to write where a hole of a String is wrong.
#pragma once

#include <string>

#include "base/diagnostic.h"
#include "base/token_span.h"
#include "symbols/value_type.h"

// The hole that shows such a value: a variable must be exactly what the tag says. Empty where there is none.
std::string HoleFor(const std::string& content, const ValueType& type);

// Has the mistake, which is about the hole at the byte `from` of a literal, close it, or give it the tag that its variable
// wants. False where neither is wrong. The mistake's columns are those of the literal.
bool FixHole(korvel::Diagnostic& mistake, const Word& literal, std::size_t from);
