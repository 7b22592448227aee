// The dispatch table: which routine translates a statement, by its first word.
#pragma once

#include "statements/state.h"

// Where a statement may stand. Statements that check their place themselves are Anywhere.
enum class Place : unsigned char { Anywhere, Routine };

struct DispatchRow {
    Keyword keyword;
    StatementHandler handler;
    Place place;
};

// The row of a keyword, or null: then the statement is an assignment or a call.
const DispatchRow* FindDispatchRow(Keyword keyword);
