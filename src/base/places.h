// Where paths lead when the links on the way are followed.
#pragma once

#include <string>

// The place in the file system, which need not exist, with forward slashes; "?" when it cannot be told. Links come
// before "..": out/link/../x is a neighbour of what the link names.
std::string Resolved(const std::string& path);

// Where a file lies, however its path is spelt. A link at the end of the path is not followed.
std::string PlaceOf(const std::string& path);

// Whether a folder lies neither in `top` nor is it; both need not exist.
bool LeadsOutOf(const std::string& top, const std::string& folder);
