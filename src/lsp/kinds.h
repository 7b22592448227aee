// What the protocol calls the kinds of names, a row each.
#pragma once

#include "library/korvel.h"

namespace lsp {

struct KindRow {
    korvel::Symbol::Kind kind;
    const char* word;        // which declares it
    int symbol, completion;  // its numbers in lists of symbols and of completions
    int token;               // and the place of its word in the list of TokenTypes
};

const KindRow& RowOf(korvel::Symbol::Kind kind);

}  // namespace lsp
