// What is allowed and nearly always a slip: a row for each warning.
#pragma once

#include <string>

#include "base/report.h"
#include "base/token_span.h"
#include "expressions/operators.h"

struct State;

struct WarningRow {
    const char* name;  // for the comment that silences it, and its page in the manual
    const char* text;  // "{}" stands for the words that it is about
    const char* hint;
    // What looks for it: each statement before it is translated, each operator or array item of its expressions, each value
    // that is given to something with a type, or each statement that is a call. They
    // return the words that it is about, none where all is well. Rows without such a routine are met by walks over more than one
    // statement, or by the statement itself (Warn).
    TokenSpan (*inStatement)(const State& state, TokenSpan statement) = nullptr;
    TokenSpan (*inOperation)(const Operation& operation) = nullptr;
    TokenSpan (*inIndexing)(const Indexing& indexing) = nullptr;
    TokenSpan (*inGiving)(const Giving& giving) = nullptr;
    TokenSpan (*inCall)(const CallStatement& statement) = nullptr;
};

struct WarningRows {
    const WarningRow *first, *last;
    const WarningRow* begin() const { return first; }
    const WarningRow* end() const { return last; }
};
WarningRows AllWarnings();

// Warns of the row, or that with the name, about these words.
void WarnOf(const WarningRow& row, const Stop::Subject& about);
void WarnOf(const char* name, const Stop::Subject& about);

// The words, as they may be kept beyond their statement.
inline Stop::Subject Kept(TokenSpan words) { return {words.first, words.Copy()}; }
