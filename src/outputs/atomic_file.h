// Writing small files that must never be found half-written.
#pragma once

#include <cstdint>
#include <string>

// Writes a file under a passing name beside it and moves it into place. False when that fails; the file
// that was there then stays as it was.
bool ReplaceFile(const std::string& path, const std::string& text);
bool ReplaceFile(const std::string& path, const std::string& text, const std::string& passing);

bool FileExists(const std::string& path);

// 0 for a file that cannot be examined.
std::uintmax_t FileSize(const std::string& path);
