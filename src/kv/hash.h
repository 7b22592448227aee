// Short names for long texts.
#pragma once

#include <string>

// Sixteen digits that differ for different texts.
std::string HashOf(const std::string& text);
