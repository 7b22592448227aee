// Folders for what kv makes and runs or uses later: nobody but the user can have had a hand in them.
#pragma once

#include <string>
#include <vector>

// The folder that `below` leads to, one name after the other, from the folder `top`. All of them, `top` included, are
// made where they are missing; they are the user's own, no links, and closed to everybody else. Empty when that is not
// so, or when nothing can be written in the last one.
std::string PrivateFolder(const std::string& top, const std::vector<std::string>& below);

// The folder of this kind that holds what kv keeps for the user; empty when there is no cache folder. It is not made.
std::string CacheFolder();
