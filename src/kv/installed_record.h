// What kv build has left where: libraries that it may replace when they have changed.
#pragma once

#include <string>

// Whether the file holds what kv has once put there.
bool IsInstalledByKv(const std::string& path);

// Notes that kv puts a file with this content (of another file) at `path`. Without a cache folder nothing is noted.
void RecordInstalled(const std::string& path, const std::string& content);
