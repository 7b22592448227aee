// Ifs of one line that bring their own EndIf. Such an If ends on its line,
//     If a Then Print "x" EndIf
// unless a later EndIf of the routine has no other If to close; then it stays open until there.
#pragma once

#include <set>
#include <string>
#include <utility>

#include "base/token_span.h"

// Statements by line and place in the line.
using StatementPlaces = std::set<std::pair<int, std::size_t>>;

// Whether a statement begins at the position of a line with such an If.
bool BeginsStatement(TokenSpan line, std::size_t at);

// Whether nothing stands behind the Then at the position, which leaves the If open; noToken for an If without one.
bool StaysOpen(TokenSpan statement, std::size_t then);

// The place of the EndIf that ends the last If of the statement, not counting Ifs within Ifs; noToken when it has none.
std::size_t OwnEndIf(TokenSpan statement);

// The statements of the file whose last If stays open in spite of its own EndIf.
StatementPlaces FindIfsLeftOpen(const std::string& source);
