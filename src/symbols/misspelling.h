// Advice about words that nobody knows: which ones that can be used there are spelt nearly like them.
#pragma once

#include <string>

#include "base/report.h"

// "\nDid you mean 'print'?" when a keyword or Function is spelt nearly like the name; else nothing. So kvt says it.
std::string SpellingHint(const std::string& name);

// Whether a word that stands alone may be meant to open, divide or close a block: unless it is spelt nearly like
// something else.
bool MayConcernBlocks(const std::string& word);

struct Advice {
    std::string hint;         // "did you mean 'Print'?"
    std::string replacement;  // the word in its own spelling; empty when none is near
};
// What may have been meant by the word at the statement under way; `owner` is the class of a member.
Advice AdviceFor(const std::string& word, Sought sought, const ClassInfo* owner);
