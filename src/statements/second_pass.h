// The second pass: reads a file's lines, cuts them into statements and dispatches each on its first word.
#pragma once

#include "lexer/lexer.h"
#include "statements/state.h"

// Looks at each statement before it is translated; null where nobody wants to.
extern void (*watchStatement)(const State& state, TokenSpan statement);

// Runs the pass over the whole source; the .cpp goes to the pieces of state.out. Blocks still open at
// the end of the file end the run.
void RunSecondPass(State& state, const std::string& source);

// The same without the checks at the beginning and the end: the statements stand in what is open.
void ReadStatements(State& state, const std::string& source);

// Translates one statement: keyword statements by the dispatch table, everything else as an
// assignment or a call.
void DispatchStatement(State& state, TokenSpan tokens);
