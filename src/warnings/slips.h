// Slips that a single statement, operator or array item shows.
#pragma once

#include "warnings/table.h"

// Of statements.
TokenSpan AssignsTwice(const State& state, TokenSpan statement);
TokenSpan ComparesInstead(const State& state, TokenSpan statement);
TokenSpan AssignsToItself(const State& state, TokenSpan statement);
TokenSpan DefaultExceedsType(const State& state, TokenSpan statement);
TokenSpan NamesFileBare(const State& state, TokenSpan statement);
TokenSpan NamesOtherItems(const State& state, TokenSpan statement);
TokenSpan DeclaresTypeAgain(const State& state, TokenSpan statement);
TokenSpan NamesConstructor(const State& state, TokenSpan statement);
TokenSpan RunsIntoLabel(const State& state, TokenSpan statement);
TokenSpan EndsWithWord(const State& state, TokenSpan statement);
TokenSpan CountsNothing(const State& state, TokenSpan statement);
TokenSpan CountsForever(const State& state, TokenSpan statement);
TokenSpan GetsBeyondEnd(const State& state, TokenSpan statement);
TokenSpan PrintsShifted(const State& state, TokenSpan statement);
TokenSpan EscapesByBackslash(const State& state, TokenSpan statement);

// The type of a variable, its items or Fields: name[...]\name. Unknown where it is anything else.
ValueType TypeOfPlace(TokenSpan place);

// Of operators.
TokenSpan NegatesOperand(const Operation& operation);
TokenSpan IsPower(const Operation& operation);
TokenSpan ComparesComparison(const Operation& operation);
TokenSpan JoinsNumber(const Operation& operation);
TokenSpan ComparesInBits(const Operation& operation);
TokenSpan OrdersNumberTexts(const Operation& operation);

// Of items of arrays.
TokenSpan IndexesBeyondSize(const Indexing& indexing);

// Of values that something with a type is given.
TokenSpan ExceedsType(const Giving& giving);

// Of statements that are calls.
TokenSpan LosesResult(const CallStatement& statement);
