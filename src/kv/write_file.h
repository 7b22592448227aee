// Files that are never found half-written: they are written beside their place and moved there. A link in that place is
// replaced, not followed.
#pragma once

#include <filesystem>
#include <string>

// Writes a file of kv's own, in a folder where only one kv works at a time. Returns false when that fails.
bool WriteOver(const std::filesystem::path& path, const std::string& text);

// Copies a file to a place of the user's. Returns false after telling the user that it cannot be written.
bool CopyOver(const std::filesystem::path& from, const std::filesystem::path& to);

// Gives a file of the user's another text, with the rights it had; a link to it stays one. Returns false after telling
// the user that it cannot be written.
bool RewriteFile(const std::filesystem::path& path, const std::string& text);
