// What to write where a block, a bracket or a String is not closed.
#pragma once

#include <string>

#include "base/diagnostic.h"

// Has the mistake put the closer behind what stands deeper than the line of its file on which the block begins. Nothing
// is added where the indentation tells no end.
void FixOpenBlock(korvel::Diagnostic& mistake, int openLine, const std::string& closer);

// Has the mistake put the other sign to the end of its line, if it is about an open bracket or String.
void FixOpenSign(korvel::Diagnostic& mistake);
