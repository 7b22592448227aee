// What differs between Windows and the rest: three calls on paths and the file status.
#pragma once

#include <cstdint>
#include <string>

// Full path of the running executable, cut at 260 characters; empty when it cannot be had.
std::string ExecutablePath();

// Makes a folder the working directory. False when that fails.
bool ChangeFolder(const std::string& folder);

// The full path with "." and ".." resolved by its text alone; the path as given when that fails.
std::string AbsolutePath(const std::string& path);

// Modification time in seconds; 0 for a file that cannot be examined.
std::int64_t FileTime(const std::string& path);

// Whether the system's loader finds the shared library by its name alone.
bool SystemHasLibrary(const std::string& name);
