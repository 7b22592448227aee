#pragma once

#include <cstddef>
#include <string>

// The number of letters to put in, leave out, replace or swap to make one word of the other; most + 1 stands for more.
std::size_t EditDistance(const std::string& a, const std::string& b, std::size_t most);
