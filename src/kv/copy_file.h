// Copying a file so that whoever uses the old one meanwhile keeps it, and nobody meets half a file.
#pragma once

#include <filesystem>

// Returns false after telling the user what went wrong.
bool CopyOver(const std::filesystem::path& from, const std::filesystem::path& to);
