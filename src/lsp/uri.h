// Names of files as clients have them: file:///home/me/my%20game.kvl
#pragma once

#include <string>

// What is no file yet has a path, too.
std::string PathOfUri(const std::string& uri);
std::string UriOfPath(const std::string& path);

// One spelling for each path: absolute, without "." and "..", and without "/" at the end of a folder.
std::string NormalPath(const std::string& path);
