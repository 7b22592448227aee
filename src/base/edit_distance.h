#pragma once

#include <cstddef>
#include <string>
#include <vector>

// The number of letters to put in, leave out, replace or swap to make one word of the other; most + 1 stands for more.
std::size_t EditDistance(const std::string& a, const std::string& b, std::size_t most);

// Of the words that there are the first one that is spelt most like it, capitals aside; empty where all need more than
// `most` changes.
std::string NearestWord(const std::string& word, const std::vector<std::string>& known, std::size_t most);
