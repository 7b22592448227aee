// The names of files behind Include.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lsp {

// Whether a text ends in the name of an included file, and how that begins.
bool IsIncludedName(std::string_view before, std::string& name);

// The files and folders that could stand in the last part of a name that has begun so, by their last parts.
std::vector<std::string> NamesToInclude(const std::string& main, const std::string& installation,
                                        const std::string& begun);

}  // namespace lsp
