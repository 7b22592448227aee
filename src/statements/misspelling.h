// Advice about words that nobody knows.
#pragma once

#include <string>

// "\nDid you mean 'Print'?" when a keyword or Function is spelt nearly like the name; else nothing.
std::string SpellingHint(const std::string& name);
